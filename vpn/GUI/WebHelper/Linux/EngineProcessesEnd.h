#pragma once

/// At its own end, sees to it that no process of the engine outlives this one. They end by
/// themselves when this process does, but one that is stopped, or whose page keeps it busy, would
/// not notice. To be destroyed on the main thread, after the window; any descriptor of theirs is
/// then of no more use.
class CEngineProcessesEnd {
public:
    CEngineProcessesEnd() = default;
    ~CEngineProcessesEnd();
    CEngineProcessesEnd(const CEngineProcessesEnd&) = delete;
    CEngineProcessesEnd& operator=(const CEngineProcessesEnd&) = delete;
};
