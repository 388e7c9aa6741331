#include "results.h"

#include <stdlib.h>
#include <string.h>

static const int32_t none = -1, zero = 0, one = 1, two = 2, three = 3, single_precision = 4;
static const int32_t no_filters = 0, no_parameters[2] = {0, 0};

static int32_t write_variable(const vak_id* file, const char* name, const int32_t* components)
{
    const int32_t lengths[3] = {1, 1, 1}, offsets[3] = {0, 1, 2}, no_units[3] = {0, 0, 0};
    int32_t status = 0;
    VAK_WRITE_VARIABLE(file, NULL, NULL, name, "CLASS_DISCRETE", name, components, &zero, &zero, &zero,
                       "FLOAT", &zero, components, no_units, no_units, NULL, NULL, NULL, NULL, "XYZ", lengths,
                       offsets, NULL, &no_filters, no_parameters, &single_precision, &status);
    return status;
}

/* What does not change: what the run is, its variables, nodes and elements. */
static int32_t write_model(const vak_id* file, const Plate* plate)
{
    const int32_t corners = 4, plane = 2;
    int32_t *part = calloc((size_t)plate->elements, sizeof *part), status = 0;
    if (part == NULL) return none;
    for (int e = 0; e < plate->elements; ++e) part[e] = 1;
    VAK_WRITE_FILEHEADER(file, NULL, NULL, &status);
    if (status == 0) VAK_WRITE_INDEX(file, &one, "TIME", NULL, NULL, &status);
    if (status == 0) status = write_variable(file, "TIME", &one);
    if (status == 0) status = write_variable(file, "COORD", &three);
    if (status == 0) status = write_variable(file, "TEMPERATURE", &one);
    if (status == 0) status = write_variable(file, "HEAT", &one);
    if (status == 0) status = write_variable(file, "GRADIENT", &two);
    if (status == 0)
        VAK_WRITE_ENTITYRESULTS(file, "NODE", &plate->nodes, "COORD", &three, "", &none, "GLOBAL", &zero,
                                &zero, &zero, &zero, NULL, NULL, plate->node_id, &zero, NULL, NULL, NULL,
                                plate->place, &none, &none, &no_filters, no_parameters, &single_precision,
                                &status);
    if (status == 0)
        VAK_WRITE_CONNECTIVITIES(file, "ELEMENT", "QU4", "PART", "NODE", "", &plate->elements, &corners,
                                 &plane, &zero, &zero, &zero, &zero, NULL, NULL, plate->element_id, part,
                                 plate->corners, NULL, NULL, &none, &no_filters, no_parameters,
                                 &single_precision, &status);
    free(part);
    return status;
}

int32_t results_create(const char* name, const Plate* plate, vak_id* file)
{
    const int32_t length = (int32_t)strlen(name), create = 0;
    int32_t status = 0;
    VAK_OPEN(name, &length, "plate", &(const int32_t){5}, "", &zero, file, &zero, &create, &status);
    return status == 0 ? write_model(file, plate) : status;
}

/* Values at the nodes. An operator tells how the merger joins what several ranks have for a node; without
 * one all of them have the same. */
static int32_t write_results(const vak_id* file, const Plate* plate, const char* variable, int32_t components,
                             const char* op, const float* values, int32_t state, float time)
{
    const int32_t joined = op != NULL;
    char operators[2 * 256];
    memset(operators, ' ', sizeof operators);
    for (int c = 0; joined && c < components; ++c) memcpy(operators + 256 * c, op, strlen(op));
    int32_t status = 0;
    VAK_WRITE_ENTITYRESULTS(file, "NODE", &plate->nodes, variable, &components, "", &none, "GLOBAL", &zero,
                            &joined, &one, &one, &state, &time, plate->node_id, &zero, NULL, operators,
                            plate->area, values, &none, &state, &no_filters, no_parameters, &single_precision,
                            &status);
    return status;
}

int32_t results_write_state(const vak_id* file, const Plate* plate, int32_t state, float time)
{
    const size_t nodes = (size_t)plate->nodes;
    float* values = calloc(2 * nodes, sizeof *values);
    if (values == NULL) return none;
    for (size_t n = 0; n < nodes; ++n) values[n] = (float)plate->temperature[n];
    int32_t status = write_results(file, plate, "TEMPERATURE", 1, NULL, values, state, time);
    for (size_t n = 0; n < nodes; ++n) values[n] = (float)(plate->area[n] * plate->temperature[n]);
    if (status == 0) status = write_results(file, plate, "HEAT", 1, "SUM", values, state, time);
    plate_gradient(plate, values);
    if (status == 0) status = write_results(file, plate, "GRADIENT", 2, "AVERAGE", values, state, time);
    free(values);
    /* Flushed states survive whatever happens to the run later. */
    if (status == 0) VAK_FLUSH(file, &zero, &status);
    return status;
}

int32_t results_close(const vak_id* file)
{
    int32_t status = 0;
    VAK_CLOSE(file, &status);
    return status;
}
