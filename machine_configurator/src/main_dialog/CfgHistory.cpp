#include "main_dialog/CfgHistory.h"

#include <cstring>

namespace {

std::int32_t step(std::int32_t index, std::int32_t by) {
    return (index + by + CfgHistory::kSize) % CfgHistory::kSize;
}

} // namespace

void CfgHistoryEntry::set_text(char (&field)[kTextSize], const std::string& value) {
    const std::size_t length = value.size() < kTextSize ? value.size() : kTextSize - 1;
    std::memcpy(field, value.data(), length);
    field[length] = '\0';
}

void CfgHistory::Reset() {
    current = next = oldest = 0;
    for (CfgHistoryEntry& entry : entries)
        entry = CfgHistoryEntry{};
}

bool CfgHistory::CanRedo() const {
    return current != next && step(current, 1) != next;
}

const CfgHistoryEntry* CfgHistory::Redo() {
    if (!CanRedo())
        return nullptr;
    current = step(current, 1);
    return &entries[current];
}

bool CfgHistory::CanUndo() const {
    return current != oldest;
}

const CfgHistoryEntry* CfgHistory::Undo() {
    if (!CanUndo())
        return nullptr;
    current = step(current, -1);
    return &entries[current];
}

void CfgHistory::Push(const CfgHistoryEntry& entry) {
    entries[next] = entry;
    current = next;
    next = step(next, 1);
    if (next == oldest)
        oldest = step(oldest, 1);
}

CfgHistory& TheCfgHistory() {
    static CfgHistory history;
    return history;
}
