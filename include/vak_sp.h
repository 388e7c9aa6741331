/* vak_sp: block-structured result files on HDF5. The C interface, both families.
 *
 * Conventions
 * -----------
 * Every block, file and tool routine takes all its arguments by address, so that Fortran calls it as it is,
 * and gives its result in the last argument, ierr; only the utilities at the end take plain values.
 *
 * vak_id      a 64-bit HDF5 identifier of a file or group; negative is invalid.
 * Texts       `const char *` arguments are fields of 256 characters unless a length stands with them:
 *             blank padded, or ended by a zero byte (a plain C string may be passed; what follows its
 *             zero byte is not read). Names count up to their last graphic character. Readers fill the
 *             whole field of 256 characters and set no zero byte of their own.
 * Arrays      in the order of their indices, the last index fastest: res[nent][ncoo] is what a
 *             column-major caller declares res(ncoo,nent). All arrays belong to the caller, who sizes them
 *             from the counts; a count below 0 is a length of 0. On writing they are only read. On reading
 *             an array pointer may be null: the field is checked and not delivered. ierr and scalars
 *             may not be null.
 * Reals       float32 in memory. float_size (or real_size, 4 or 8; 0 and below mean 4) is their size in the file.
 * ivsize      size and kind of stored values: 4 or 8 real values of that many bytes; 16 or 32 complex
 *             values whose two parts have ivsize/4 bytes, in memory as pairs (real, imaginary) of float32;
 *             anything else means 4.
 * nindex      number of index values of a state (a time, a frequency); 0 places a block under "constant",
 *             -1 under "multistate", any other value under "singlestate".
 * state       number of the state in the block's path; below 0 the path has one level for each entry of indexident.
 * flags       compression flag word (iopt is another name for it). Deflate: 1 integers, 2 reals, 4 texts.
 *             Shuffle: 8 integers, 16 reals, 32 texts. Scale-offset: 64 integers, 128 reals. Reals that
 *             must stay exact (units, index values, weights ...) are never scale-offset compressed.
 *             On reading: what was found. An array of fewer than 8 elements is never filtered.
 * params      (ipar) two values: decimal digits kept by scale-offset of reals (0..256), deflate level (0..9).
 * mode, count, start   part of an array: mode 0 all of it; mode 1 a slab, one count and one start per
 *             extent, the start along a growing axis counted from its present end; mode 2 a list of points.
 *
 * Status (ierr)
 * -------------
 * 0 is success; negative is failure, with one line on standard error that says what failed. Readers of
 * results return the key of the block that they read, as documented there. Codes of the storage layer:
 * -1000-n writing an attribute, -2000-n creating a dataset, -3000-n writing one, -4000-n reading an attribute,
 * -6000-n reading a dataset, n being the number in the line. HDF5's own error text is never printed, and the caller's
 * setting of it is left as it was. No routine ends the process, except that the state eraser and the
 * merger exit with status 1 when memory runs out. A failure leaves what was written before it.
 *
 * Threads: one thread at a time in a process, as HDF5 itself requires.
 *
 * Two families: VAK_* writes and reads the current layout, VAK1_* the layout of the generation before
 * (no level "vakblock"; "header", "index" and "data" subgroups in each block).
 */
#ifndef VAK_SP_H
#define VAK_SP_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define VAK_API __attribute__((visibility("default")))
#else
#define VAK_API
#endif

typedef int64_t vak_id;

/* ==== Files and groups ===================================================== */

/* ==== Automatic paths ====================================================== */

/* ==== Version, build, chunk size =========================================== */

/* ==== File header, key 1 in listings ======================================= */

/* ==== System block, key 10 ================================================= */

/* ==== Index block, key 20 ================================================== */

/* ==== Variable blocks, key 30; variable groups, key 32 ===================== */

/* ==== Text block, key 40 =================================================== */

/* ==== Parts block, key 100 ================================================= */

/* ==== Attributes, key 200; identifiers, key 250 ============================ */

/* ==== Connectivities, key 300 ============================================== */

/* ==== Collector, key 400 =================================================== */

/* ==== Properties, key 500 ================================================== */

/* ==== Entity results, keys 1000 and 1001 =================================== */

/* ==== Multi-state entity results, keys 1050 and 1051 ======================= */

/* ==== Element results, keys 1100 and 1101 ================================== */

/* ==== Multi-state element results, keys 1150 and 1151 ====================== */

/* ==== Activation flags, keys 2100 and 2150 ================================= */

/* ==== Dense matrix, keys 10000 and 10001 =================================== */

/* ==== Triangular matrix, keys 10100 and 10101 ============================== */

/* ==== Sparse matrix, keys 10200 and 10201 ================================== */

/* ==== Block catalogue ====================================================== */

/* ==== Counted texts, sorting, searching ==================================== */

/* ==== File tools =========================================================== */

#ifdef __cplusplus
}
#endif

#endif
