# Newer versions of msgfmt write a catalogue's character set in capital letters, unless they are told
# not to. The program expects it as in the source, and older versions leave it so.
tk_need_tool(msgfmt)

execute_process(COMMAND msgfmt --help OUTPUT_VARIABLE tk_msgfmt_help COMMAND_ERROR_IS_FATAL ANY)
set(tk_msgfmt msgfmt)
if(tk_msgfmt_help MATCHES "--no-convert")
    list(APPEND tk_msgfmt --no-convert)
endif()
