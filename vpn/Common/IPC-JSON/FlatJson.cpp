#include "FlatJson.h"

// Boost's JSON reader uses the global bind placeholders. Without this macro every build prints a
// note.
#define BOOST_BIND_GLOBAL_PLACEHOLDERS

#include <boost/property_tree/json_parser.hpp>
#include <sstream>

boost::property_tree::ptree ReadFlatJson(const std::string& json) {
    std::istringstream stream(json);
    boost::property_tree::ptree tree;
    boost::property_tree::read_json(stream, tree);
    return tree;
}

std::string WriteFlatJson(const boost::property_tree::ptree& tree) {
    std::ostringstream stream;
    boost::property_tree::write_json(stream, tree, false);
    std::string json = stream.str();
    // Newer versions of Boost do not end the line.
    if (json.empty() || json.back() != '\n') {
        json += '\n';
    }
    return json;
}

std::string TextOf(const boost::property_tree::ptree& tree, const char* key) {
    return tree.get(key, std::string());
}

void PutUnlessEmpty(boost::property_tree::ptree& tree, const char* key, const std::string& text) {
    if (!text.empty()) {
        tree.put(key, text);
    }
}
