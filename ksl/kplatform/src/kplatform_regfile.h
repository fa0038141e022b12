// The registry as the text of a registry editor export, in memory.
#pragma once

#include "kplatform_winerror.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korv::platform::regfile {

struct Value {
    std::string name; // empty for the default value
    DWORD type = 0;
    std::string data; // the bytes as RegQueryValueExA gives them
};

struct Key {
    std::string path; // "HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv", root in upper case
    std::vector<Value> values;

    Value* find_value(std::string_view name);
    const Value* find_value(std::string_view name) const;
};

// Keys in the order of the file. Lookups ignore ASCII case.
class Registry {
public:
    // "REGEDIT4" files keep their header, and their REG_EXPAND_SZ and
    // REG_MULTI_SZ data stay single bytes instead of UTF-16.
    bool regedit4 = false;

    const Key* find(std::string_view path) const;
    Key* find(std::string_view path);
    // True if the key has a section of its own or one below it.
    bool exists(std::string_view path) const;
    // The key, made with every missing key above it (below the root), each
    // behind the subtree of its parent. True if anything was added.
    bool create(std::string_view path, Key*& key);
    // Adds a section at the end; the key must not have one yet.
    Key& append(std::string path);
    // Removes the key's own section; the caller checks for sub-keys.
    void remove(std::string_view path);
    // Removes the key and everything below it.
    void remove_tree(std::string_view path);
    // The names of the direct sub-keys, each once, in file order.
    std::vector<std::string> sub_keys(std::string_view path) const;
    bool has_sub_keys(std::string_view path) const;
    const std::vector<Key>& keys() const { return m_keys; }

private:
    Key& insert(std::string path);
    void reindex();

    std::vector<Key> m_keys;
    std::unordered_map<std::string, std::size_t> m_index; // lower-cased path -> position
};

// "HKEY_LOCAL_MACHINE" and the other root names; empty for an unknown one.
// Matches ignoring case and gives the canonical spelling.
std::string_view canonical_root(std::string_view name);

std::string lower(std::string_view text);

// Parses the text of a registry file. On failure `line` (1-based, or 0 for the
// file as a whole) and `reason` tell why, and `out` is undefined.
bool parse(std::string_view text, Registry& out, unsigned& line, std::string& reason);

// The text of the file, with CR LF line endings.
std::string serialise(const Registry& registry);

} // namespace korv::platform::regfile
