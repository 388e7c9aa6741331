// What the lines at the head of a result file tell about the run.
#pragma once

#include <string>

#include "frd/records.h"

namespace vak::import {

struct RunDescription {
    std::string title;            // of the record 1C, else the heading of the input, else the model's name
    std::string solver, version;  // "CalculiX", "2.20"
    std::string host;
    std::string date, time;  // YYYYMMDD and HHMMSS, or blanks
};

RunDescription describe(const frd::Description& description, const std::string& model);

}  // namespace vak::import
