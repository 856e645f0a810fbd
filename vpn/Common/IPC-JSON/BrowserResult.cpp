#include "BrowserResult.h"

#include <exception>
#include <utility>

#include "AppLog.h"
#include "FlatJson.h"

CBrowserResult::CBrowserResult(BrowserResultType resultType, std::string cookieValue)
    : m_type(resultType), m_cookieValue(std::move(cookieValue)) {}

bool CBrowserResult::Serialize(std::string& json) const {
    json.clear();
    const auto name = ResultTypeNames.find(m_type);
    if (name == ResultTypeNames.end() || m_type == BrowserResultType::undefined) {
        TK_LOG_ERROR("Undefined browser result type.");
        return false;
    }
    try {
        boost::property_tree::ptree tree;
        tree.put("result", name->second);
        PutUnlessEmpty(tree, "cookie_value", m_cookieValue);
        json = WriteFlatJson(tree);
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR("Caught serialization exception - %s", error.what());
        return false;
    }
}

bool CBrowserResult::Deserialize(const std::string& json) {
    try {
        const boost::property_tree::ptree tree = ReadFlatJson(json);
        m_type = TypeOfName(ResultTypeNames, TextOf(tree, "result"), BrowserResultType::undefined);
        if (m_type == BrowserResultType::undefined) {
            TK_LOG_ERROR("Undefined browser result type.");
            return false;
        }
        m_cookieValue = TextOf(tree, "cookie_value");
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR("Caught deserialization exception - %s", error.what());
        return false;
    }
}

void CBrowserResult::Reset() {
    *this = CBrowserResult();
}
