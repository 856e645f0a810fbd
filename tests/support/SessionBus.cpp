#include "SessionBus.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <stdexcept>

#include "TestDeadline.h"
#include "UniqueFd.h"
#include "Waiting.h"

namespace {

std::string Configuration(const std::string& address, const std::string& services) {
    return "<busconfig>\n"
           "  <type>session</type>\n"
           "  <listen>" +
           address +
           "</listen>\n"
           "  <servicedir>" +
           services +
           "</servicedir>\n"
           "  <policy context='default'>\n"
           "    <allow send_destination='*' eavesdrop='true'/>\n"
           "    <allow eavesdrop='true'/>\n"
           "    <allow own='*'/>\n"
           "  </policy>\n"
           "</busconfig>\n";
}

}  // namespace

SessionBus::SessionBus(const std::vector<std::string>& hangingServices,
                       const std::vector<std::string>& machinesServices) {
    std::filesystem::create_directory(m_folder.Path("services"));
    for (const std::string& service : hangingServices) {
        InstallHangingService(service);
    }
    for (const std::string& service : machinesServices) {
        std::filesystem::copy_file("/usr/share/dbus-1/services/" + service + ".service",
                                   m_folder.Path("services/" + service + ".service"));
    }
    WriteFile(m_folder.Path("bus.conf"), Configuration(Address(), m_folder.Path("services")));
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("dbus-daemon: no pipe");
    }
    const CUniqueFd reading(ends[0]);
    CUniqueFd writing(ends[1]);
    const CUniqueFd silence(open("/dev/null", O_WRONLY | O_CLOEXEC));
    LaunchCommand command;
    command.arguments = {"/usr/bin/dbus-daemon", "--config-file=" + m_folder.Path("bus.conf"),
                         "--nofork", "--nosyslog", "--print-address=1"};
    command.output = writing.Get();
    command.error = silence.Get();
    std::string reason;
    const bool isStarted = m_daemon.Start(command, reason);
    writing.Reset();
    // It prints its address once it listens, and nothing when it fails.
    char first = 0;
    if (!isStarted || !WaitReadable({reading.Get()}, DeadlineIn(kTestDeadline)) ||
        read(reading.Get(), &first, 1) != 1) {
        throw std::runtime_error("dbus-daemon did not start: " + reason);
    }
}

std::string SessionBus::Address() const {
    return "unix:path=" + m_folder.Path("socket");
}

bool SessionBus::HasStarted(const std::string& hangingService) const {
    return std::filesystem::exists(MarkOf(hangingService));
}

std::string SessionBus::MarkOf(const std::string& service) const {
    return m_folder.Path(service + ".started");
}

// The service ends with the bus, whatever that dies of.
void SessionBus::InstallHangingService(const std::string& name) const {
    WriteFile(m_folder.Path("services/" + name + ".service"),
              "[D-BUS Service]\n"
              "Name=" +
                  name +
                  "\n"
                  "Exec=/usr/bin/setpriv --pdeathsig KILL /bin/sh -c \"touch " +
                  MarkOf(name) + "; exec sleep infinity\"\n");
}
