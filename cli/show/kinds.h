// One function for each kind of block (or for kinds that differ by little): the list of its reader's
// arguments.
#pragma once

#include "show/fields.h"

namespace vak::show {

void show_header(Reading& reading);
void show_system(Reading& reading);
void show_index(Reading& reading);
void show_variable(Reading& reading);  // legacy: variables
void show_variablegroup(Reading& reading);
void show_text(Reading& reading);
void show_parts(Reading& reading);

void show_attributes(Reading& reading);  // and identifiers
void show_connectivities(Reading& reading);
void show_collector(Reading& reading);
void show_properties(Reading& reading);

void show_entityresults(Reading& reading);
void show_multientityresults(Reading& reading);
void show_elementresults(Reading& reading);
void show_multielementresults(Reading& reading);
void show_activflags(Reading& reading);
void show_multiactivflags(Reading& reading);

void show_densematrix(Reading& reading);
void show_triangularmatrix(Reading& reading);
void show_sparsematrix(Reading& reading);

// What most kinds have in common.
struct Index {
    Integer nindex{"nindex"}, indexic{"indexic"};
    Integers indexident{"indexident", {nindex}};
    Reals indexval{"indexval", {nindex}};

    Index() = default;
    Index(const Index&) = delete;
    Index& operator=(const Index&) = delete;
};

struct Units {
    Integers mbunit, mdunit;
    Integers ubid{"ubid", {Extent([this] { return mbunit.sum(); })}};
    Reals ubexp{"ubexp", {Extent([this] { return mbunit.sum(); })}};
    Integers udid{"udid", {Extent([this] { return mdunit.sum(); })}};
    Reals udexp{"udexp", {Extent([this] { return mdunit.sum(); })}};

    explicit Units(const Integer& columns) : mbunit("mbunit", {columns}), mdunit("mdunit", {columns}) {}
    Units(const Units&) = delete;
    Units& operator=(const Units&) = delete;
};

struct Found {
    Flags flags;
    Parameters params;
};

}  // namespace vak::show
