// The undo history of the active configuration: a ring of ten snapshots, one
// for the whole process.
//
// A snapshot pushed after some undos goes behind the undone ones, which stay
// in the ring as ordinary steps back; nothing is ever cut off. Once full the
// ring holds nine snapshots, so eight steps back. Not thread safe: the program
// has one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// One snapshot. The three unit texts are fixed fields; set_text cuts a longer
// value so that it always fits with its terminator.
struct CfgHistoryEntry {
    static constexpr std::size_t kTextSize = 256;

    std::string group = "CONTOUR/SURFACE";
    char drive_unit[kTextSize] = {};
    char table[kTextSize] = {};
    char stand[kTextSize] = {};
    std::string folder;
    std::string proxy;

    static void set_text(char (&field)[kTextSize], const std::string& value);
};

class CfgHistory {
public:
    static constexpr std::int32_t kSize = 10;

    // All indices 0, every entry blank.
    void Reset();
    bool CanRedo() const;
    // The next snapshot, now the current one; null if there is none.
    const CfgHistoryEntry* Redo();
    bool CanUndo() const;
    // The snapshot before the current one, now the current one; null if there is none.
    const CfgHistoryEntry* Undo();
    // Stores a copy at `next` and makes it current; the oldest falls out when
    // the ring is full.
    void Push(const CfgHistoryEntry& entry);

    CfgHistoryEntry entries[kSize];
    std::int32_t current = 0; // the snapshot shown now
    std::int32_t next = 0;    // where the next snapshot goes
    std::int32_t oldest = 0;  // the oldest snapshot still reachable
};

// The one history of the process.
CfgHistory& TheCfgHistory();
