#include "BrowserOperation.h"

#include <exception>
#include <utility>

#include "AppLog.h"
#include "FlatJson.h"

namespace {

bool IsBrowsing(BrowserOperationType type) {
    return type == BrowserOperationType::browse || type == BrowserOperationType::browse_for_cookie;
}

}  // namespace

CBrowserOperation::CBrowserOperation(BrowserOperationType operationType, bool show,
                                     std::uint32_t timeout, std::string url, std::string finalUrl,
                                     std::string cookieName, std::string errorCookieName,
                                     std::string userAgent, std::string title)
    : m_type(operationType),
      m_show(show),
      m_timeout(timeout),
      m_url(std::move(url)),
      m_finalUrl(std::move(finalUrl)),
      m_cookieName(std::move(cookieName)),
      m_errorCookieName(std::move(errorCookieName)),
      m_userAgent(std::move(userAgent)),
      m_title(std::move(title)) {}

bool CBrowserOperation::Serialize(std::string& json) const {
    json.clear();
    // Writes the undefined type under its name, unlike a result: the wire has always carried it so.
    const auto name = OperationTypeNames.find(m_type);
    if (name == OperationTypeNames.end()) {
        TK_LOG_ERROR("Undefined browser operation type.");
        return false;
    }
    try {
        boost::property_tree::ptree tree;
        tree.put("operation", name->second);
        if (IsBrowsing(m_type)) {
            tree.put("show", m_show);
            if (m_type == BrowserOperationType::browse) {
                tree.put("timeout", m_timeout);
            }
            PutUnlessEmpty(tree, "title", m_title);
        }
        PutUnlessEmpty(tree, "url", m_url);
        PutUnlessEmpty(tree, "final_url", m_finalUrl);
        PutUnlessEmpty(tree, "cookie_name", m_cookieName);
        PutUnlessEmpty(tree, "error_cookie_name", m_errorCookieName);
        PutUnlessEmpty(tree, "user_agent", m_userAgent);
        json = WriteFlatJson(tree);
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR("Caught serialization exception - %s", error.what());
        return false;
    }
}

bool CBrowserOperation::Deserialize(const std::string& json) {
    try {
        const boost::property_tree::ptree tree = ReadFlatJson(json);
        m_type = TypeOfName(OperationTypeNames, TextOf(tree, "operation"),
                            BrowserOperationType::undefined);
        if (m_type == BrowserOperationType::undefined) {
            TK_LOG_ERROR("Undefined browser operation type.");
            return false;
        }
        m_show = tree.get("show", false);
        m_timeout = tree.get("timeout", std::uint32_t{0});
        m_url = TextOf(tree, "url");
        m_finalUrl = TextOf(tree, "final_url");
        m_cookieName = TextOf(tree, "cookie_name");
        m_errorCookieName = TextOf(tree, "error_cookie_name");
        m_userAgent = TextOf(tree, "user_agent");
        m_title = TextOf(tree, "title");
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR("Caught deserialization exception - %s", error.what());
        return false;
    }
}

void CBrowserOperation::Reset() {
    // Keeps the timeout: after a reset the record still has the time limit of the operation before
    // it.
    *this = CBrowserOperation(BrowserOperationType::undefined, false, m_timeout, "", "", "", "", "",
                              "");
}
