// The one value of the process: the chunk extent along unlimited dimensions.
#include "storage/storage.h"

namespace vak {

static int32_t chunk_size_of_process = 1;

int32_t chunk_size() { return chunk_size_of_process; }

void set_chunk_size(int32_t size) { chunk_size_of_process = size; }

}  // namespace vak
