// Reading a member's data as a whole, and what the data tell of where an entry ends.
//
// Errors:  0, 1000 when the check value does not hold, 1.
#pragma once

#include "library/progress.h"
#include "library/state.h"

namespace zo {

// Of the library's bytes; `counter` is its header's.
int readContent(ByteStore& bytes, std::uint32_t counter, const RawEntry& entry, ByteSink& out,
                Progress& watched);
int readMember(LibraryState& library, const RawEntry& entry, ByteSink& out, Progress& watched);

// Whether a damage of the data can be told, other than by sizes that contradict each other.
[[nodiscard]] bool isProtected(const LibraryState& library, const EntryRecord& record);

// What is known of where an entry ends.
enum class Extent {
  kSound,    // its check value proves it
  kUnknown,  // nothing protects it, or it has no data
  kDamaged,
};
// Reads the data where its fields alone do not tell. `goesOn` may end it.
[[nodiscard]] Extent extentOf(LibraryState& library, const RawEntry& entry, Progress& goesOn);

// Whether the entry's data are a library themselves: then entries in it are no damage.
[[nodiscard]] bool holdsLibrary(LibraryState& library, const RawEntry& entry);

}  // namespace zo
