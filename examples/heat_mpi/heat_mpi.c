/* Heat spreading in a plate, computed by as many ranks as MPI starts. Each writes its own file while it runs;
 * vak merge joins them afterwards.
 * usage: mpirun -np 4 heat_mpi NAME     writes NAME-0.h5, NAME-1.h5 ... */
#include <mpi.h>
#include <stdio.h>

#include "results.h"

enum { states = 5, steps_per_state = 40 };

static int32_t run(const char* name, int rank, int ranks)
{
    const double dt = 0.2 / plate_elements / plate_elements;
    Plate plate = plate_of(rank, ranks);
    vak_id file = -1;
    int32_t status = results_create(name, &plate, &file);
    for (int32_t state = 1; state <= states && status == 0; ++state) {
        for (int step = 0; step < steps_per_state; ++step) plate_step(&plate, rank, ranks, dt);
        status = results_write_state(&file, &plate, state, (float)(state * steps_per_state * dt));
    }
    if (file >= 0) {
        const int32_t closed = results_close(&file);
        if (status == 0) status = closed;
    }
    plate_free(&plate);
    return status;
}

int main(int argc, char** argv)
{
    int rank = 0, ranks = 1;
    MPI_Init(&argc, &argv);
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks);
    if (argc != 2 || ranks > plate_elements) {
        if (rank == 0) fprintf(stderr, "usage: mpirun -np N heat_mpi NAME, N at most %d\n", plate_elements);
        MPI_Finalize();
        return 2;
    }
    char name[4096];
    snprintf(name, sizeof name, "%s-%d.h5", argv[1], rank);
    const int32_t status = run(name, rank, ranks);
    /* Ranks that wait for this one end with it. */
    if (status != 0) MPI_Abort(MPI_COMM_WORLD, 2);
    MPI_Finalize();
    return 0;
}
