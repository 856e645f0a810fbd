#pragma once

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <string>

/// Parses a JSON document. Throws a property-tree error if it is malformed.
[[nodiscard]] boost::property_tree::ptree ReadFlatJson(const std::string& json);

/// Returns the tree as one compact line that ends with a line feed. Every value is a JSON string.
/// Throws a property-tree error if the tree cannot be written.
[[nodiscard]] std::string WriteFlatJson(const boost::property_tree::ptree& tree);

/// Returns a member's text; empty if it is missing.
[[nodiscard]] std::string TextOf(const boost::property_tree::ptree& tree, const char* key);

/// Adds a member unless its text is empty.
void PutUnlessEmpty(boost::property_tree::ptree& tree, const char* key, const std::string& text);

/// Returns the type with exactly this name, or the fallback if no type has it.
template <class TypeNames>
typename TypeNames::key_type TypeOfName(const TypeNames& names, const std::string& name,
                                        typename TypeNames::key_type fallback) {
    const auto match = std::find_if(names.begin(), names.end(),
                                    [&](const auto& entry) { return entry.second == name; });
    return match != names.end() ? match->first : fallback;
}
