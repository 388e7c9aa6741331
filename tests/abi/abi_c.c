/* A program that knows the header and the shared library only. It is C99, and C++ as well, and is built in
 * both languages, in this tree and against an installed library. Usage: program FILE (which it makes). */
#include <stdio.h>
#include <string.h>
#include <vak_sp.h>

static int failures = 0;

static void expect(int holds, const char* what)
{
    if (!holds) {
        printf("not so: %s\n", what);
        ++failures;
    }
}

static vak_id open_file(const char* name, int32_t option)
{
    const int32_t length = (int32_t)strlen(name), none = 0;
    vak_id group = -1;
    int32_t ierr = -1;
    VAK_OPEN(name, &length, "", &none, "", &none, &group, &none, &option, &ierr);
    expect(ierr == 0, "the file opens");
    return group;
}

static void close_file(vak_id group)
{
    int32_t ierr = -1;
    VAK_CLOSE(&group, &ierr);
    expect(ierr == 0, "the file closes");
}

static void write_index(const char* name)
{
    const vak_id group = open_file(name, 8);
    const int32_t nindex = 2;
    int32_t ierr = -1;
    VAK_WRITE_INDEX(&group, &nindex, "TIME", NULL, NULL, &ierr);
    expect(ierr == 0, "the index block is written");
    close_file(group);
}

static void read_index(const char* name)
{
    const vak_id group = open_file(name, 10);
    const int32_t to_the_end = -1, open_directly = 1;
    vak_id block = -1;
    int32_t ierr = -1, nindex = 0;
    char etypvar[256] = "";
    VAK_H5GOPEN(&group, "constant/indices/vakblock", &to_the_end, &open_directly, &block, &ierr);
    expect(ierr == 0, "the index block is found");
    VAK_READ_INDEX(&block, NULL, &nindex, etypvar, NULL, NULL, &ierr);
    expect(ierr == 0, "the index block is read");
    expect(nindex == 2, "the number of indices comes back");
    expect(strcmp(etypvar, "TIME") == 0, "the type comes back");
    close_file(group);
}

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    remove(argv[1]);
    write_index(argv[1]);
    read_index(argv[1]);
    remove(argv[1]);
    return failures == 0 ? 0 : 1;
}
