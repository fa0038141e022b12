// Memory for the lines of one ini container, the text of the file they view,
// and the entry names made later.
//
// A loaded file is its text and one line object per line.
// Taking them from a few large blocks instead of one heap allocation each makes
// a load much cheaper, keeps the lines of a file close together in memory, and
// saves the heap's per-allocation overhead. Freed pieces go to a free list by
// size and are reused. Everything handed out goes with the arena.
//
// The arena lives until its container has let go of it and the last line from
// it has been deleted, so a line taken out of its container still frees
// safely. Nodes and names belong to the maps of sections, which are lines
// themselves; they don't keep the arena alive.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>

namespace korv {

class KIniDataArena {
public:
    // Throws std::bad_alloc.
    static KIniDataArena* create();

    // Pieces are 8-aligned; throws std::bad_alloc.
    void* allocate(std::size_t size);
    void deallocate(void* piece, std::size_t size) noexcept;
    // The owner lets go; the arena goes as soon as no line is out.
    void release() noexcept;

    // Line objects. One from an arena is found again by the address of its
    // block, so it carries no word of its own; its memory stays unused until
    // the arena goes, which bounds it by what was loaded. Null: the heap.
    static void* allocate_line(KIniDataArena* arena, std::size_t size);
    // A line from allocate_line, after its destructor ran.
    static void free_line(void* line, bool from_arena) noexcept;
    // For a line whose constructor threw.
    static void abandon_line(KIniDataArena* arena, void* line) noexcept;

    // Room for the text of a loaded file, which the lines then view; it goes
    // with the arena. Throws std::bad_alloc.
    char* allocate_text(std::size_t size);
    // Gives back room from allocate_text that no line views.
    void free_text(char* text) noexcept;

    // Names of entries, the keys of their index: bytes in the arena, or on the
    // heap without one. An empty name takes no memory.
    static std::string_view store_name(KIniDataArena* arena, std::string_view name);
    static void free_name(KIniDataArena* arena, std::string_view name) noexcept;

    KIniDataArena(const KIniDataArena&) = delete;
    KIniDataArena& operator=(const KIniDataArena&) = delete;

private:
    KIniDataArena() = default;
    ~KIniDataArena();
    void* allocate_from_new_block(std::size_t size);
    void line_returned() noexcept;

    static constexpr std::size_t kAlign = 8;
    static constexpr std::size_t kLargest = 256; // bigger pieces come from the heap, listed
    // Blocks are aligned to their size, so that a piece finds its block's
    // header; they stay below the sizes at which the C heap maps memory of
    // its own or tidies up its free lists on every release.
    static constexpr std::size_t kBlockSize = 32 * 1024;

    struct Block {
        Block* next;
        KIniDataArena* arena;
    };
    struct FreePiece {
        FreePiece* next;
    };
    struct TextBlock {
        TextBlock* next;
        TextBlock* prev;
    };
    struct LargePiece { // in front of a piece above kLargest
        LargePiece* prev;
        LargePiece* next;
    };

    char* m_next = nullptr; // unused rest of the newest block
    char* m_end = nullptr;
    Block* m_blocks = nullptr;
    FreePiece* m_free[kLargest / kAlign + 1] = {};
    LargePiece* m_large = nullptr;
    TextBlock* m_texts = nullptr;
    std::size_t m_lines = 0; // line objects out
    bool m_owned = true;
};

// The allocator of the entry maps: nodes from the section's arena, or from the
// heap for a section made on its own.
template <class T> class KIniDataArenaAllocator {
public:
    using value_type = T;
    using propagate_on_container_copy_assignment = std::true_type;
    using propagate_on_container_move_assignment = std::true_type;
    using propagate_on_container_swap = std::true_type;

    KIniDataArenaAllocator() noexcept = default;
    explicit KIniDataArenaAllocator(KIniDataArena* arena) noexcept : m_arena(arena) {}
    template <class U>
    KIniDataArenaAllocator(const KIniDataArenaAllocator<U>& other) noexcept
        : m_arena(other.arena()) {}

    T* allocate(std::size_t n) {
        static_assert(alignof(T) <= 8, "arena pieces are 8-aligned");
        if (m_arena && n == 1)
            return static_cast<T*>(m_arena->allocate(sizeof(T)));
        return std::allocator<T>().allocate(n);
    }
    void deallocate(T* p, std::size_t n) noexcept {
        if (m_arena && n == 1)
            m_arena->deallocate(p, sizeof(T));
        else
            std::allocator<T>().deallocate(p, n);
    }

    KIniDataArena* arena() const noexcept { return m_arena; }
    template <class U> bool operator==(const KIniDataArenaAllocator<U>& other) const noexcept {
        return m_arena == other.arena();
    }

private:
    KIniDataArena* m_arena = nullptr;
};

} // namespace korv
