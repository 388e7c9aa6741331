// For a build that counts lines: processes that tests fork end by _exit, which would leave what they ran
// uncounted.
#include <sys/syscall.h>
#include <unistd.h>

extern "C" void __gcov_dump();

extern "C" void _exit(int status)
{
    __gcov_dump();
    syscall(SYS_exit_group, status);
    __builtin_unreachable();
}
