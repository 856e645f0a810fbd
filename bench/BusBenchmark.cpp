// The start must not wait for services of the desktop. It must take as long on a session bus, also
// on one with a portal that hangs, as without a bus.

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"
#include "SessionBus.h"

namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kOnABus[] = "start to ready, on a session bus";
constexpr char kHangingPortal[] = "start to ready, on one with a portal that hangs";

void ReportReady(const std::string& measure, const std::string& program,
                 const Environment& environment) {
    EmptyHome();
    MeasuredHelper helper(environment);
    Report(measure, program, helper.Process().Start(), helper.Ready());
}

void StartOn(const SessionBus& bus, const std::string& measure) {
    ReportReady(measure, "Ours", {{"DBUS_SESSION_BUS_ADDRESS", bus.Address()}});
}

}  // namespace

void Measure(const Amount& amount, TimedPages& /*pages*/) {
    Interleave(amount.rounds, {
                                  [] { ReportReady(kOnABus, "without a bus", {}); },
                                  [] { StartOn(SessionBus(), kOnABus); },
                                  [] { ReportReady(kHangingPortal, "without a bus", {}); },
                                  [] { StartOn(SessionBus({kPortal}), kHangingPortal); },
                              });
}
