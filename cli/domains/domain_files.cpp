#include "domains/domain_files.h"

#include "domains/partition.h"

namespace vak::domains {

DomainFiles::DomainFiles(const std::vector<std::string>& names, const std::string& model,
                         const import::Survey& survey, const std::string& series)
    : shares_(survey.mesh, partition(survey.mesh, static_cast<int32_t>(names.size())),
              static_cast<int32_t>(names.size()))
{
    for (size_t i = 0; i < names.size(); ++i) {
        const import::PartFile& part = parts_.emplace_back(names[i]);
        files_.emplace_back(part.path(), model, survey, shares_.meshes()[i], series);
    }
}

// A result that a domain has no node of is none of its results; one without any nodes is everyone's.
void DomainFiles::write(const import::PlannedResult& result, const frd::Values& values,
                        const import::ValueForm& form)
{
    const std::vector<frd::Values> shares = shares_.split(values);
    for (size_t i = 0; i < files_.size(); ++i)
        if (values.nodes.empty() || !shares[i].nodes.empty()) files_[i].write(result, shares[i], form);
}

void DomainFiles::write_parameters(size_t state, const std::vector<std::string>& lines)
{
    for (import::ResultFile& file : files_) file.write_parameters(state, lines);
}

void DomainFiles::complete()
{
    for (import::ResultFile& file : files_) file.close();
    for (import::PartFile& part : parts_) part.complete();
}

}  // namespace vak::domains
