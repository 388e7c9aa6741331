// The compression parameter file: lines of a variable name and the decimal exponent of its scale-offset
// filter.
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "vak_sp.h"

namespace vak {

namespace {

constexpr size_t slot = 256;
constexpr const char* blanks = " \t\n\v\f\r";

struct CloseFile {
    void operator()(FILE* file) const { std::fclose(file); }
};
using TextFile = std::unique_ptr<FILE, CloseFile>;

struct Entry {
    char name[300];
    int32_t exponent;
};

int32_t clamped(long value)
{
    constexpr long low = std::numeric_limits<int32_t>::min();
    constexpr long high = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(value, low, high));
}

// The name and the integer of a line, once its comment is cut off; false for any other line.
bool parse(char* line, Entry* entry)
{
    line[std::strcspn(line, "$#")] = '\0';
    const char* const name = line + std::strspn(line, blanks);
    const size_t length = std::strcspn(name, blanks);
    if (length == 0) return false;
    char* end = nullptr;
    const long exponent = std::strtol(name + length, &end, 10);
    if (end == name + length) return false;
    std::memcpy(entry->name, name, length);
    entry->name[length] = '\0';
    entry->exponent = clamped(exponent);
    return true;
}

// Calls `take` for each entry. Longer lines go on as further lines.
template <class Take>
void for_each_entry(FILE* file, Take take)
{
    char line[300];
    Entry entry;
    while (std::fgets(line, sizeof line, file) != nullptr)
        if (parse(line, &entry)) take(entry);
}

TextFile open_text(const char* name)
{
    TextFile file(std::fopen(name, "r"));
    struct stat info {};
    if (file && fstat(fileno(file.get()), &info) == 0 && S_ISDIR(info.st_mode)) file.reset();
    return file;
}

void print_table_head(int32_t count)
{
    std::printf("\n Table: Exponents per variable for scaleoffset compression filters\n");
    std::printf("\n   Number of variables found in parameter file: %d\n\n", count);
    std::printf("   +----------+-------------------------------------------------\n");
    std::printf("   | exponent | variable\n");
    std::printf("   +----------+-------------------------------------------------\n");
}

void count_entries(FILE* file, int32_t* count, bool verbose)
{
    *count = 0;
    for_each_entry(file, [&](const Entry&) { ++*count; });
    if (verbose) print_table_head(*count);
}

// A name longer than its slot runs on into the following one, as long as that is one of the caller's.
void store(const Entry& entry, int32_t k, int32_t slots, char* names)
{
    const size_t room = k + 1 < slots ? 2 * slot : slot;
    std::memcpy(names + static_cast<size_t>(k) * slot, entry.name, std::min(std::strlen(entry.name), room));
}

void fill_entries(FILE* file, int32_t* count, char* names, int32_t* exponents, bool verbose)
{
    const int32_t slots = std::max(*count, 0);
    std::fill_n(names, slot * static_cast<size_t>(slots), ' ');  // with no slots there may be no array
    *count = 0;
    for_each_entry(file, [&](const Entry& entry) {
        if (verbose) std::printf("   %10d | \"%s\"\n", entry.exponent, entry.name);
        store(entry, *count, slots, names);
        exponents[(*count)++] = entry.exponent;
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_READ_PARAM(
    const char* filename, const void*, const int32_t* pass,
    int32_t* count, char* names, int32_t* exponents, const int32_t* verbosity, int32_t* ierr)
{
    const TextFile file = open_text(filename);
    *ierr = file ? 0 : -1;
    if (!file)
        std::fprintf(stderr, "Fatal error: Cannot open or find file \"%s\".\n", filename);
    else if (*pass == 0)
        count_entries(file.get(), count, *verbosity > 0);
    else if (*pass == 1)
        fill_entries(file.get(), count, names, exponents, *verbosity > 0);
}
