#include "SystemLog.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "RegularExpression.h"
#include "TestDeadline.h"

namespace {

constexpr std::size_t kLargestLine = 65536;

[[noreturn]] void Fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

CUniqueFd BindTo(const std::string& path) {
    CUniqueFd descriptor(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(descriptor.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        Fail("bind " + path);
    }
    if (chmod(path.c_str(), 0666) != 0) {
        Fail("chmod " + path);
    }
    return descriptor;
}

// "<27>Jan  2 03:04:05 identity[123]: text", where all but the priority may be missing.
SystemLogRecord Parse(const std::string& line) {
    const std::vector<std::string> parts =
        MatchedGroups(line,
                      "^<([0-9]+)>([A-Z][a-z]{2} [ 0-9][0-9] [0-9]{2}:[0-9]{2}:[0-9]{2} )?"
                      "(([^[:space:]:[]+)(\\[([0-9]+)\\])?: )?");
    SystemLogRecord record;
    record.raw = line;
    if (parts.empty()) {
        record.text = line;
        return record;
    }
    record.priority = std::stoi(parts[1]);
    record.identity = parts[4];
    record.pid = parts[6].empty() ? 0 : std::stoi(parts[6]);
    record.text = line.substr(parts[0].size());
    return record;
}

}  // namespace

SystemLog::SystemLog(const std::string& path)
    : m_path(path),
      m_socket(BindTo(path)),
      m_stop(eventfd(0, EFD_CLOEXEC)),
      m_thread([this] { Run(); }) {}

SystemLog::~SystemLog() {
    eventfd_write(m_stop.Get(), 1);
    m_thread.join();
    unlink(m_path.c_str());
}

std::vector<SystemLogRecord> SystemLog::Records() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    ReadPending();
    return m_records;
}

std::vector<std::string> SystemLog::Texts(const std::string& identity) {
    std::vector<std::string> texts;
    for (const SystemLogRecord& record : Records()) {
        if (record.identity == identity) {
            texts.push_back(record.text);
        }
    }
    return texts;
}

bool SystemLog::WaitFor(const std::string& part) {
    std::unique_lock<std::mutex> guard(m_mutex);
    return m_changed.wait_for(guard, kTestDeadline, [&] {
        return std::any_of(m_records.begin(), m_records.end(), [&](const SystemLogRecord& record) {
            return record.text.find(part) != std::string::npos;
        });
    });
}

void SystemLog::Clear() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    ReadPending();
    m_records.clear();
}

void SystemLog::Run() {
    pollfd watched[] = {{m_socket.Get(), POLLIN, 0}, {m_stop.Get(), POLLIN, 0}};
    while (poll(watched, 2, -1) >= 0 || errno == EINTR) {
        if (watched[1].revents != 0) {
            return;
        }
        const std::lock_guard<std::mutex> guard(m_mutex);
        ReadPending();
    }
}

// The caller holds the lock, so that lines keep their order whoever reads them.
void SystemLog::ReadPending() {
    std::string line(kLargestLine, '\0');
    for (;;) {
        const ssize_t length = recv(m_socket.Get(), line.data(), line.size(), 0);
        if (length < 0) {
            break;
        }
        m_records.push_back(Parse(line.substr(0, static_cast<std::size_t>(length))));
    }
    m_changed.notify_all();
}
