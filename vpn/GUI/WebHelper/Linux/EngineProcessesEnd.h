#pragma once

/// Its destructor makes sure that no process of the engine outlives this one. Processes in the
/// engine's sandbox are the kernel's to end: see SandboxLifetime.cpp. The others normally end by
/// themselves when this process ends. But a process that is stopped, or that its page keeps busy,
/// would not notice. Must be destroyed on the main thread, after the window. Descriptors of these
/// processes are useless afterwards.
class CEngineProcessesEnd {
public:
    CEngineProcessesEnd() = default;
    ~CEngineProcessesEnd();
    CEngineProcessesEnd(const CEngineProcessesEnd&) = delete;
    CEngineProcessesEnd& operator=(const CEngineProcessesEnd&) = delete;
};
