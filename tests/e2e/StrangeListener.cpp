#include "StrangeListener.h"

#include <fcntl.h>

#include <array>
#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace {

/// The end to read from and the end to write to.
std::pair<CUniqueFd, CUniqueFd> Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe2");
    }
    return {CUniqueFd(ends[0]), CUniqueFd(ends[1])};
}

/// Up to the line's end or the stream's.
std::string ReadLine(const CUniqueFd& stream) {
    std::string line;
    for (char byte = 0; read(stream.Get(), &byte, 1) == 1 && byte != '\n';) {
        line += byte;
    }
    return line;
}

}  // namespace

StrangeListener::StrangeListener(const std::string& way) {
    auto [itsInput, input] = Pipe();
    auto [output, itsOutput] = Pipe();
    m_input = std::move(input);
    m_output = std::move(output);
    LaunchCommand command;
    command.arguments = {"/usr/bin/python3", TK_STRANGER, "listen", way};
    command.input = itsInput.Get();
    command.output = itsOutput.Get();
    std::string reason;
    if (!m_process.Start(command, reason)) {
        throw std::runtime_error(reason);
    }
    itsOutput.Reset();
    std::istringstream(ReadLine(m_output)) >> m_port >> m_user;
    if (m_user == std::to_string(geteuid())) {
        nameStranger();
    }
}

void StrangeListener::nameStranger() {
    m_user = std::to_string(geteuid() + 1);
    std::array<char, 64> address{};
    std::snprintf(address.data(), address.size(), "0100007F:%04X", std::stoi(m_port));
    m_table = m_folder.Path("tcp");
    WriteFile(m_table, std::string("   0: ") + address.data() + " 00000000:0000 0A 0:0 0:0 0 " +
                           m_user + " 0 1\n");
}

std::map<std::string, std::optional<std::string>> StrangeListener::Environment() const {
    if (m_table.empty()) {
        return {};
    }
    return {{"LD_PRELOAD", TK_SOCKET_TABLE}, {"TK_SOCKET_TABLE", m_table}};
}

std::string StrangeListener::CountReceived() {
    m_input.Reset();
    return ReadLine(m_output);
}
