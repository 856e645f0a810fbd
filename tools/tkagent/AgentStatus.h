#pragma once

/// How a run of tkagent went. The values are its exit statuses.
enum class AgentStatus {
    /// Every result came, and the helper ended with status 0.
    Success = 0,
    /// The agent's own sockets or streams failed.
    AgentFailure = 1,
    /// The command line or a line of the input is wrong.
    BadInput = 2,
    /// The helper could not be started.
    HelperNotStarted = 3,
    /// The helper ended by itself, or with another status than 0.
    HelperFailed = 4,
    /// The helper took too long.
    TimedOut = 5,
    /// The helper sent something that is not a result.
    BadResult = 6,
    /// The demo's sign-in ended without its cookie.
    NoCookie = 7,
};
