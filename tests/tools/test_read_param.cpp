// The compression parameter file.
#include <sys/stat.h>

#include <fstream>

#include "support/block_test.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

class ReadParam : public BlockTest {
protected:
    // What a pass is given and what it gives.
    struct Table {
        int32_t count = 0;
        std::string names;
        std::vector<int32_t> exponents;

        explicit Table(int32_t slots, size_t room)
            : count(slots), names(room * 256, '?'), exponents(room, -77)
        {
        }
        std::string slot(size_t k) const { return names.substr(k * 256, 256); }
    };

    std::string text_file(const std::string& text)
    {
        const std::string name = path("parameters");
        std::ofstream(name, std::ios::binary) << text;
        return name;
    }
    Result read(const std::string& name, int32_t pass, Table& table, int32_t verbosity = 0)
    {
        return run([&] {
            int32_t ierr = -55;
            VAK_READ_PARAM(name.c_str(), nullptr, &pass, &table.count, table.names.data(),
                           table.exponents.data(), &verbosity, &ierr);
            return ierr;
        });
    }
    int32_t counted(const std::string& text)
    {
        Table table(-3, 1);
        EXPECT_EQ(read(text_file(text), 0, table), success);
        EXPECT_EQ(table.names, std::string(256, '?'));
        return table.count;
    }
    Table filled(const std::string& text, int32_t slots, size_t room)
    {
        Table table(slots, room);
        EXPECT_EQ(read(text_file(text), 1, table), success);
        return table;
    }
};

const std::string head =
    "   +----------+-------------------------------------------------\n"
    "   | exponent | variable\n"
    "   +----------+-------------------------------------------------\n";

std::string table_head(int count)
{
    return "\n Table: Exponents per variable for scaleoffset compression filters\n"
           "\n   Number of variables found in parameter file: " +
           std::to_string(count) + "\n\n" + head;
}

TEST_F(ReadParam, entries_are_counted_and_then_stored_in_the_order_of_the_file)
{
    const std::string text = "DISPLACEMENT 3\n STRESS\t-2\nDISPLACEMENT 4\n";
    EXPECT_EQ(counted(text), 3);
    const Table table = filled(text, 3, 4);
    EXPECT_EQ(table.count, 3);
    EXPECT_EQ(table.exponents, (std::vector<int32_t>{3, -2, 4, -77}));
    EXPECT_EQ(table.slot(0), padded("DISPLACEMENT"));
    EXPECT_EQ(table.slot(1), padded("STRESS"));
    EXPECT_EQ(table.slot(2), padded("DISPLACEMENT"));
    EXPECT_EQ(table.slot(3), std::string(256, '?'));
}

TEST_F(ReadParam, both_characters_begin_comments)
{
    EXPECT_EQ(counted("A 5 $ five\nB 5# five\n$ C 5\n#D 5\n$#\nE $ 5\nF # 5\nG 5$#\n"), 3);
    EXPECT_EQ(filled("A 5 $ five\nB 6# five $\n", 2, 2).exponents, (std::vector<int32_t>{5, 6}));
    EXPECT_EQ(filled("A$B 5\nC 1", 1, 1).slot(0), padded("C"));
}

TEST_F(ReadParam, lines_that_are_no_entries_are_passed_over)
{
    EXPECT_EQ(counted(""), 0);
    EXPECT_EQ(counted("\n\n   \n\t\n"), 0);
    EXPECT_EQ(counted("NAME\nNAME x\nNAME -\n5\nNAME .5\n"), 0);
    EXPECT_EQ(counted("5 5\nNAME +5 rest\r\nNAME 5.7\nNAME 5x\nNAME    \t 5"), 5);
    EXPECT_EQ(filled("NAME 5.7\nN +6 x", 2, 2).exponents, (std::vector<int32_t>{5, 6}));
}

TEST_F(ReadParam, table_is_printed_in_two_pieces_and_its_last_rule_left_to_the_caller)
{
    const std::string name = text_file("DISPLACEMENT 3\nS -12\n");
    Table table(0, 2);
    EXPECT_EQ(read(name, 0, table, 1), (Result{0, {table_head(2), ""}}));
    EXPECT_EQ(read(name, 1, table, 2),
              (Result{0, {"            3 | \"DISPLACEMENT\"\n          -12 | \"S\"\n", ""}}));
    EXPECT_EQ(read(name, 0, table, -1), success);
}

TEST_F(ReadParam, file_of_comments_alone_has_a_table_of_0_entries)
{
    Table table(7, 1);
    EXPECT_EQ(read(text_file("$ nothing\n\n# here\n"), 0, table, 1), (Result{0, {table_head(0), ""}}));
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(read(path("parameters"), 1, table, 1), success);
}

TEST_F(ReadParam, missing_file_is_told_and_leaves_everything_untouched)
{
    for (const int32_t pass : {0, 1, 2})
        for (const std::string& name : {path("none"), path("."), std::string()}) {
            Table table(3, 3);
            EXPECT_EQ(read(name, pass, table, 1),
                      failure(-1, "Fatal error: Cannot open or find file \"" + name + "\".\n"));
            EXPECT_EQ(table.count, 3);
            EXPECT_EQ(table.names, std::string(768, '?'));
            EXPECT_EQ(table.exponents, (std::vector<int32_t>{-77, -77, -77}));
        }
}

TEST_F(ReadParam, another_pass_reads_nothing)
{
    const std::string name = text_file("A 5\n");
    for (const int32_t pass : {-1, 2, 100}) {
        Table table(3, 1);
        EXPECT_EQ(read(name, pass, table, 1), success);
        EXPECT_EQ(table.count, 3);
        EXPECT_EQ(table.names, std::string(256, '?'));
    }
}

TEST_F(ReadParam, slots_of_the_count_passed_in_are_blanked_and_all_entries_stored)
{
    const Table more_slots = filled("A 5\n", 2, 3);
    EXPECT_EQ(more_slots.count, 1);
    EXPECT_EQ(more_slots.slot(1), padded(""));
    EXPECT_EQ(more_slots.slot(2), std::string(256, '?'));
    const Table more_entries = filled("A 5\nB 6\nC 7\n", 1, 3);
    EXPECT_EQ(more_entries.count, 3);
    EXPECT_EQ(more_entries.exponents, (std::vector<int32_t>{5, 6, 7}));
    EXPECT_EQ(more_entries.slot(0), padded("A"));
    EXPECT_EQ(more_entries.slot(2), "C" + std::string(255, '?'));
    EXPECT_EQ(filled("A 5\n", -4, 1).slot(0), "A" + std::string(255, '?'));
}

TEST_F(ReadParam, a_longer_name_runs_on_into_the_next_slot)
{
    const std::string name = std::string(256, 'N') + "tail";
    const Table table = filled(name + " 5\n", 2, 2);
    EXPECT_EQ(table.names, padded(name, 512));
    EXPECT_EQ(filled(name + " 5\nB 6\n", 2, 2).names, padded(std::string(256, 'N') + "Bail", 512));
    EXPECT_EQ(filled(std::string(256, 'N') + " 5\n", 1, 1).names, std::string(256, 'N'));
}

TEST_F(ReadParam, a_name_never_runs_on_past_the_last_slot)
{
    const std::string name(290, 'N');
    EXPECT_EQ(filled(name + " 5\n", 1, 2).names, std::string(256, 'N') + std::string(256, '?'));
    EXPECT_EQ(filled("A 1\n" + name + " 5\n", 2, 3).names,
              padded("A") + std::string(256, 'N') + std::string(256, '?'));
}

// 299 characters are read at a time.
TEST_F(ReadParam, a_line_longer_than_the_buffer_goes_on_as_a_further_line)
{
    const std::string name(299, 'N');
    EXPECT_EQ(counted(name + " 5\n"), 0);
    EXPECT_EQ(counted(name + "B 5\n"), 1);
    EXPECT_EQ(filled(name + "B 5\n", 1, 1).slot(0), padded("B"));
    EXPECT_EQ(counted("A 5" + std::string(296, ' ') + "B 6\n"), 2);
    EXPECT_EQ(counted("$" + std::string(298, 'x') + "B 6\n"), 1);
    EXPECT_EQ(counted(std::string(297, 'N') + " 5\n"), 1);
}

TEST_F(ReadParam, file_without_entries_needs_no_arrays)
{
    const std::string name = text_file("$ nothing\n");
    int32_t count = 0;
    EXPECT_EQ(run([&] {
                  const int32_t storing = 1, quiet = 0;
                  int32_t ierr = untouched;
                  VAK_READ_PARAM(name.c_str(), nullptr, &storing, &count, nullptr, nullptr, &quiet, &ierr);
                  return ierr;
              }),
              success);
    EXPECT_EQ(count, 0);
}

TEST_F(ReadParam, exponents_that_no_integer_holds_are_the_nearest_one)
{
    EXPECT_EQ(filled("A 99999999999999999999\nB -99999999999\nC 2147483648\nD -2147483648\n", 4, 4).exponents,
              (std::vector<int32_t>{2147483647, -2147483647 - 1, 2147483647, -2147483647 - 1}));
}

TEST_F(ReadParam, zero_bytes_and_other_bytes_are_harmless)
{
    EXPECT_EQ(counted(std::string("A 5\0rest\nB\0 6\n\0\nC 7\n", 21)), 2);
    EXPECT_EQ(filled("\xff\xfe 5\n", 1, 1).slot(0), padded("\xff\xfe"));
}

TEST_F(ReadParam, file_without_permission_is_told)
{
    if (geteuid() == 0) GTEST_SKIP() << "root may read every file";
    const std::string name = text_file("A 5\n");
    chmod(name.c_str(), 0);
    Table table(0, 1);
    EXPECT_EQ(read(name, 0, table).ierr, -1);
}

}  // namespace

}  // namespace vak::test
