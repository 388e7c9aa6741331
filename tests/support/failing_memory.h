// Memory that runs out. In a program that names it operator new obeys it.
#pragma once

namespace vak::test {

struct Memory {
    bool is_gone = false;  // none at all
    long left = -1;        // allocations before the one that is refused; below 0 there is no end of them

    bool refuses() { return is_gone || (left >= 0 && left-- == 0); }
};

inline Memory memory;

// Runs it with the allocation of that number refused; false when it makes no so many.
template <class Work>
bool runs_out_at(long allocation, Work&& work)
{
    memory.left = allocation;
    work();
    const bool ran_out = memory.left < 0;
    memory.left = -1;
    return ran_out;
}

}  // namespace vak::test
