/* A square plate of four-node elements, of which each rank has some rows; the rows of nodes between two ranks
 * are of both. */
#pragma once

#include <stdint.h>

enum { plate_elements = 48 }; /* along each side */

typedef struct {
    int first_row, rows;       /* of elements */
    int nodes, elements;       /* of this rank */
    int32_t* node_id;          /* in the whole plate, from 1 */
    int32_t* element_id;       /* the same of the elements */
    int32_t* corners;          /* corners[element][4]: identifiers of nodes */
    float* place;              /* place[node][3] */
    float* area;               /* of each node, its elements of this rank only */
    double* temperature;       /* of each node */
    double *whole_area, *flow; /* sums over all ranks */
} Plate;

Plate plate_of(int rank, int ranks);
void plate_free(Plate* plate);

/* One step in time. */
void plate_step(Plate* plate, int rank, int ranks, double dt);

/* The temperature gradient at each node: the mean over its elements of this rank. */
void plate_gradient(const Plate* plate, float* gradient);
