#include "OperationJournal.h"

#include <utility>

#include "AppLog.h"
#include "UriHost.h"

namespace {

using std::chrono::steady_clock;

std::string NamedPlace(const std::string& uri) {
    const std::string place = SchemeAndHost(uri.c_str());
    return place.empty() ? "no valid address" : place;
}

long long MillisecondsSince(steady_clock::time_point begin) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - begin)
        .count();
}

}  // namespace

void COperationJournal::OnBegin(const IBrowserOperation& operation) {
    const BrowserOperationType type = operation.GetOperationType();
    m_running = {type, steady_clock::now()};
    m_isRefusalKnown = false;
    m_certificates.clear();
    const char* const name = OperationTypeNames.at(type).c_str();
    if (type == BrowserOperationType::reset) {
        TK_LOG_INFORMATION_OF("handleOperationCB", "Operation %s begins", name);
    } else {
        TK_LOG_INFORMATION_OF("handleOperationCB", "Operation %s begins: %s, %s", name,
                              NamedPlace(operation.GetUrl()).c_str(),
                              operation.GetShow() ? "shown" : "not shown");
    }
}

void COperationJournal::OnResult(BrowserResultType result) {
    const char* const name = ResultTypeNames.at(result).c_str();
    if (const auto running = std::exchange(m_running, std::nullopt)) {
        TK_LOG_INFORMATION_OF("SendResult", "Operation %s ends: %s after %lld ms",
                              OperationTypeNames.at(running->type).c_str(), name,
                              MillisecondsSince(running->begin));
    } else {
        TK_LOG_INFORMATION_OF("SendResult", "A late event gives a result: %s", name);
    }
}

void COperationJournal::OnWindowRefused(const std::string& uri) {
    if (!std::exchange(m_isRefusalKnown, true)) {
        TK_LOG_INFORMATION_OF("onCreate", "A page asked for a second window: %s",
                              NamedPlace(uri).c_str());
    }
}

void COperationJournal::OnCertificateRequested(const std::string& site, bool isGiven) {
    const auto known = m_certificates.find(site);
    if (known != m_certificates.end() && known->second == isGiven) {
        return;
    }
    m_certificates[site] = isGiven;
    TK_LOG_INFORMATION_OF("onAuthenticate", "A site asked for a certificate: %s, %s", site.c_str(),
                          isGiven ? "given" : "not given");
}
