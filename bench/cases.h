// The jobs, by topic.
#pragma once

namespace bench {

void add_entity_results();
void add_many_blocks();
void add_model();
void add_series();
void add_scale_offset();
void add_matrices();

}  // namespace bench
