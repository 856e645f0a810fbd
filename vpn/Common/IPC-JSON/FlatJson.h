#pragma once

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <string>

/// Parses a JSON document; throws a property-tree error when it is malformed.
[[nodiscard]] boost::property_tree::ptree ReadFlatJson(const std::string& json);

/// The tree as one compact line that ends with a newline; every value is a JSON string.
/// Throws a property-tree error when the tree cannot be written.
[[nodiscard]] std::string WriteFlatJson(const boost::property_tree::ptree& tree);

/// A member's text, empty when it is missing.
[[nodiscard]] std::string TextOf(const boost::property_tree::ptree& tree, const char* key);

/// Adds a member unless its text is empty.
void PutUnlessEmpty(boost::property_tree::ptree& tree, const char* key, const std::string& text);

/// The type of exactly this name, or the fallback when no type has it.
template <class TypeNames>
typename TypeNames::key_type TypeOfName(const TypeNames& names, const std::string& name,
                                        typename TypeNames::key_type fallback) {
    const auto match = std::find_if(names.begin(), names.end(),
                                    [&](const auto& entry) { return entry.second == name; });
    return match != names.end() ? match->first : fallback;
}
