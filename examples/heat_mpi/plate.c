#include "plate.h"

#include <math.h>
#include <mpi.h>
#include <stdlib.h>
#include <string.h>

enum { across = plate_elements + 1 }; /* nodes of a row */

static const double length = 1.0 / plate_elements;

static void* get(size_t count, size_t size)
{
    void* memory = calloc(count, size);
    if (memory == NULL) MPI_Abort(MPI_COMM_WORLD, 1);
    return memory;
}

/* The four nodes of an element, counted from 0 on this rank, around it. */
static void corners_of(int element, int corner[4])
{
    const int lower = element / plate_elements * across + element % plate_elements;
    corner[0] = lower;
    corner[1] = lower + 1;
    corner[2] = lower + across + 1;
    corner[3] = lower + across;
}

/* Adds what the ranks have for the nodes between them, so that both have the sum. */
static void add_between(const Plate* plate, int rank, int ranks, double* values)
{
    const int neighbour[2] = {rank > 0 ? rank - 1 : MPI_PROC_NULL,
                              rank + 1 < ranks ? rank + 1 : MPI_PROC_NULL};
    double* const row[2] = {values, values + (size_t)plate->rows * across};
    double other[2][across];
    memset(other, 0, sizeof other);
    for (int side = 0; side < 2; ++side)
        MPI_Sendrecv(row[side], across, MPI_DOUBLE, neighbour[side], 0, other[1 - side], across, MPI_DOUBLE,
                     neighbour[1 - side], 0, MPI_COMM_WORLD, MPI_STATUS_IGNORE);
    /* What went up came from below. */
    for (int side = 0; side < 2; ++side)
        if (neighbour[side] != MPI_PROC_NULL)
            for (int i = 0; i < across; ++i) row[side][i] += other[side][i];
}

static void number(Plate* plate)
{
    for (int n = 0; n < plate->nodes; ++n) {
        const int i = n % across, k = plate->first_row + n / across;
        plate->node_id[n] = 1 + k * across + i;
        plate->place[3 * n] = (float)(i * length);
        plate->place[3 * n + 1] = (float)(k * length);
        /* A warm corner, and a wave across the plate. */
        plate->temperature[n] = exp(-20.0 * (i * i + k * k) * length * length) + 0.1 * sin(9.0 * i * length);
    }
    for (int e = 0; e < plate->elements; ++e) {
        int corner[4];
        corners_of(e, corner);
        plate->element_id[e] = 1 + plate->first_row * plate_elements + e;
        for (int c = 0; c < 4; ++c) {
            plate->corners[4 * e + c] = plate->node_id[corner[c]];
            plate->area[corner[c]] += (float)(length * length / 4);
        }
    }
}

Plate plate_of(int rank, int ranks)
{
    const int first = plate_elements * rank / ranks, rows = plate_elements * (rank + 1) / ranks - first;
    Plate plate = {
        .first_row = first, .rows = rows, .nodes = (rows + 1) * across, .elements = rows * plate_elements};
    const size_t nodes = (size_t)plate.nodes, elements = (size_t)plate.elements;
    plate.node_id = get(nodes, sizeof *plate.node_id);
    plate.element_id = get(elements, sizeof *plate.element_id);
    plate.corners = get(4 * elements, sizeof *plate.corners);
    plate.place = get(3 * nodes, sizeof *plate.place);
    plate.area = get(nodes, sizeof *plate.area);
    plate.temperature = get(nodes, sizeof *plate.temperature);
    plate.whole_area = get(nodes, sizeof *plate.whole_area);
    plate.flow = get(nodes, sizeof *plate.flow);
    number(&plate);
    for (int n = 0; n < plate.nodes; ++n) plate.whole_area[n] = plate.area[n];
    add_between(&plate, rank, ranks, plate.whole_area);
    return plate;
}

void plate_free(Plate* plate)
{
    free(plate->node_id);
    free(plate->element_id);
    free(plate->corners);
    free(plate->place);
    free(plate->area);
    free(plate->temperature);
    free(plate->whole_area);
    free(plate->flow);
}

/* Heat flows through the elements, each rank's own, and the nodes between ranks get it from both sides. */
void plate_step(Plate* plate, int rank, int ranks, double dt)
{
    static const double stiffness[3] = {4.0 / 6, -1.0 / 6, -2.0 / 6}; /* same node, neighbour, opposite */
    memset(plate->flow, 0, (size_t)plate->nodes * sizeof *plate->flow);
    for (int e = 0; e < plate->elements; ++e) {
        int corner[4];
        corners_of(e, corner);
        for (int a = 0; a < 4; ++a)
            for (int b = 0; b < 4; ++b) {
                const int apart = (b - a + 4) % 4;
                plate->flow[corner[a]] -= stiffness[apart == 3 ? 1 : apart] * plate->temperature[corner[b]];
            }
    }
    add_between(plate, rank, ranks, plate->flow);
    for (int n = 0; n < plate->nodes; ++n)
        plate->temperature[n] += dt * plate->flow[n] / plate->whole_area[n];
}

void plate_gradient(const Plate* plate, float* gradient)
{
    memset(gradient, 0, 2 * (size_t)plate->nodes * sizeof *gradient);
    for (int e = 0; e < plate->elements; ++e) {
        int corner[4];
        corners_of(e, corner);
        const double* t = plate->temperature;
        const double x = (t[corner[1]] - t[corner[0]] + t[corner[2]] - t[corner[3]]) / (2 * length);
        const double y = (t[corner[3]] - t[corner[0]] + t[corner[2]] - t[corner[1]]) / (2 * length);
        for (int c = 0; c < 4; ++c) {
            const double share = length * length / 4 / plate->area[corner[c]];
            gradient[2 * corner[c]] += (float)(share * x);
            gradient[2 * corner[c] + 1] += (float)(share * y);
        }
    }
}
