/* The file of one rank, written while the solver runs. */
#pragma once

#include <vak_sp.h>

#include "plate.h"

/* Each returns 0, or the status of the call that failed, which has said why. */
int32_t results_create(const char* name, const Plate* plate, vak_id* file);
int32_t results_write_state(const vak_id* file, const Plate* plate, int32_t state, float time);
int32_t results_close(const vak_id* file);
