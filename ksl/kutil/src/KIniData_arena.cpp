// Block memory for the lines, file text and entry names of one ini container.
#include "KIniData_arena.h"

#include <cstdint>
#include <cstring>
#include <new>

// Under the address sanitizer, pieces not handed out are marked unusable, so
// that a line used after its delete is caught as it would be on the heap.
#if defined(__SANITIZE_ADDRESS__)
#define KORV_ARENA_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORV_ARENA_POISON 1
#endif
#endif
#ifdef KORV_ARENA_POISON
#include <sanitizer/asan_interface.h>
#define KORV_POISON(at, size) ASAN_POISON_MEMORY_REGION(at, size)
#define KORV_UNPOISON(at, size) ASAN_UNPOISON_MEMORY_REGION(at, size)
#else
#define KORV_POISON(at, size) ((void)(at), (void)(size))
#define KORV_UNPOISON(at, size) ((void)(at), (void)(size))
#endif

namespace korv {

namespace {

std::size_t round_up(std::size_t size, std::size_t align) {
    return (size + align - 1) & ~(align - 1);
}

} // namespace

KIniDataArena* KIniDataArena::create() {
    return new KIniDataArena();
}

KIniDataArena::~KIniDataArena() {
    while (m_blocks) {
        Block* next = m_blocks->next;
        KORV_UNPOISON(m_blocks, kBlockSize);
        ::operator delete(m_blocks, std::align_val_t(kBlockSize));
        m_blocks = next;
    }
    while (m_large) {
        LargePiece* next = m_large->next;
        ::operator delete(m_large);
        m_large = next;
    }
    while (m_texts) {
        TextBlock* next = m_texts->next;
        ::operator delete(m_texts);
        m_texts = next;
    }
}

char* KIniDataArena::allocate_text(std::size_t size) {
    auto* block = static_cast<TextBlock*>(::operator new(sizeof(TextBlock) + size));
    block->prev = nullptr;
    block->next = m_texts;
    if (m_texts)
        m_texts->prev = block;
    m_texts = block;
    return reinterpret_cast<char*>(block + 1);
}

void KIniDataArena::free_text(char* text) noexcept {
    TextBlock* block = reinterpret_cast<TextBlock*>(text) - 1;
    if (block->prev)
        block->prev->next = block->next;
    else
        m_texts = block->next;
    if (block->next)
        block->next->prev = block->prev;
    ::operator delete(block);
}

void KIniDataArena::release() noexcept {
    m_owned = false;
    if (m_lines == 0)
        delete this;
}

void KIniDataArena::line_returned() noexcept {
    if (--m_lines == 0 && !m_owned)
        delete this;
}

void* KIniDataArena::allocate(std::size_t wanted) {
    const std::size_t size = round_up(wanted ? wanted : 1, kAlign);
    if (size > kLargest) {
        auto* large = static_cast<LargePiece*>(::operator new(sizeof(LargePiece) + size));
        large->prev = nullptr;
        large->next = m_large;
        if (m_large)
            m_large->prev = large;
        m_large = large;
        return large + 1;
    }
    void* piece;
    if (FreePiece* reused = m_free[size / kAlign]) {
        KORV_UNPOISON(reused, sizeof(FreePiece));
        m_free[size / kAlign] = reused->next;
        piece = reused;
    } else if (static_cast<std::size_t>(m_end - m_next) < size) {
        piece = allocate_from_new_block(size);
    } else {
        piece = m_next;
        m_next += size;
    }
    KORV_UNPOISON(piece, wanted);
    return piece;
}

void* KIniDataArena::allocate_from_new_block(std::size_t size) {
    const std::size_t header = round_up(sizeof(Block), kAlign);
    auto* block = static_cast<Block*>(::operator new(kBlockSize, std::align_val_t(kBlockSize)));
    block->next = m_blocks;
    block->arena = this;
    m_blocks = block;
    // The rest of the old block, too small for this piece, stays unused.
    m_next = reinterpret_cast<char*>(block) + header;
    m_end = reinterpret_cast<char*>(block) + kBlockSize;
    KORV_POISON(m_next, static_cast<std::size_t>(m_end - m_next));
    void* piece = m_next;
    m_next += size;
    return piece;
}

void KIniDataArena::deallocate(void* piece, std::size_t size) noexcept {
    size = round_up(size ? size : 1, kAlign);
    if (size > kLargest) {
        LargePiece* large = static_cast<LargePiece*>(piece) - 1;
        if (large->prev)
            large->prev->next = large->next;
        else
            m_large = large->next;
        if (large->next)
            large->next->prev = large->prev;
        ::operator delete(large);
        return;
    }
    KORV_UNPOISON(piece, sizeof(FreePiece));
    auto* freed = static_cast<FreePiece*>(piece);
    freed->next = m_free[size / kAlign];
    m_free[size / kAlign] = freed;
    KORV_POISON(piece, size);
}

void* KIniDataArena::allocate_line(KIniDataArena* arena, std::size_t size) {
    if (!arena)
        return ::operator new(size);
    void* line = arena->allocate(size);
    ++arena->m_lines;
    return line;
}

void KIniDataArena::free_line(void* line, bool from_arena) noexcept {
    if (!line)
        return;
    if (!from_arena) {
        ::operator delete(line);
        return;
    }
    const auto address = reinterpret_cast<std::uintptr_t>(line);
    Block* block = reinterpret_cast<Block*>(address & ~std::uintptr_t(kBlockSize - 1));
    KORV_POISON(line, sizeof(void*)); // a use after the delete shows
    block->arena->line_returned();
}

void KIniDataArena::abandon_line(KIniDataArena* arena, void* line) noexcept {
    if (arena)
        arena->line_returned();
    else
        ::operator delete(line);
}

std::string_view KIniDataArena::store_name(KIniDataArena* arena, std::string_view name) {
    if (name.empty())
        return {};
    void* bytes = arena ? arena->allocate(name.size()) : ::operator new(name.size());
    std::memcpy(bytes, name.data(), name.size());
    return {static_cast<const char*>(bytes), name.size()};
}

void KIniDataArena::free_name(KIniDataArena* arena, std::string_view name) noexcept {
    if (name.empty())
        return;
    void* bytes = const_cast<char*>(name.data());
    if (arena)
        arena->deallocate(bytes, name.size());
    else
        ::operator delete(bytes);
}

} // namespace korv
