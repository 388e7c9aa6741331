// The files of the domains of one run, written side by side while its result file is read.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "domains/shares.h"
#include "import/part_file.h"
#include "import/result_file.h"

namespace vak::domains {

class DomainFiles : public import::Receiver {
public:
    DomainFiles(const std::vector<std::string>& names, const std::string& model, const import::Survey& survey,
                const std::string& series);

    void write(const import::PlannedResult& result, const frd::Values& values,
               const import::ValueForm& form) override;
    void write_parameters(size_t state, const std::vector<std::string>& lines) override;

    // Closes all files and gives them their names.
    void complete();

private:
    Shares shares_;
    std::deque<import::PartFile> parts_;
    std::deque<import::ResultFile> files_;
};

}  // namespace vak::domains
