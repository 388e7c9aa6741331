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
 * setting of it is left as it was. No routine ends the process, except that the tools (external
 * links, state eraser, merger) exit with status 1 when memory runs out. A failure leaves what was written before it.
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

/* Opens or creates a file and hands back one group of it, the root of all that is written or read.
 *
 * filename    `filename_len` characters, up to a zero byte, less trailing blanks. With modes 1, 2, 9, 10 and 13 it
 *             may be followed by the path of a group, "run1.h5/post/sub": the longest prefix that is a file
 *             is opened, and the rest names the group handed back.
 * groupname, domainname   (with their lengths, counted in the same way) mode 0 only: the group made at the
 *             file's root and, when domain_flag is not 0, the group made in it.
 * group_id    receives the group, which belongs to the caller; 0 when there is none. It is what keeps the file open:
 *             the file closes with the last identifier of anything in it, at the latest by VAK_CLOSE.
 * option      the mode in bits 0 to 3, plus 1024 for lines on standard output that tell what is done.
 *
 *   mode  the file                                            group handed back
 *    0    created anew, with group, domain and link "post"    "post", the innermost of the groups made
 *    1    opened for update                                   "post"
 *    2    opened to read                                      "post"
 *    8    created anew, empty                                 "." (the file's root)
 *    9    opened for update                                   "."
 *   10    opened to read                                      "."
 *   13    created if absent, otherwise opened for update      "."
 *
 * Only regular files are opened or replaced, and none is replaced that a program has open, this one included.
 *
 * ierr: 0, or minus the number of errors met, each with its line on standard error; -9999 for any other mode (group_id
 * is left as it was), -998 when HDF5 is not of the 1.14 series, -999 when it does not tell its version. After
 * an error behind the opening of the file (a group that cannot be made or opened) the file stays open by an
 * identifier that only H5Fget_obj_ids tells. */
VAK_API void VAK_OPEN(
    const char *filename, const int32_t *filename_len,
    const char *groupname, const int32_t *groupname_len,
    const char *domainname, const int32_t *domainname_len,
    vak_id *group_id, const int32_t *domain_flag, const int32_t *option, int32_t *ierr);
VAK_API void VAK1_OPEN(
    const char *filename, const int32_t *filename_len,
    const char *groupname, const int32_t *groupname_len,
    const char *domainname, const int32_t *domainname_len,
    vak_id *group_id, const int32_t *domain_flag, const int32_t *option, int32_t *ierr);

/* Closes the whole file that `group_id` (any object of it) belongs to: flushes it, then closes every group, dataset,
 * stored type and attribute that is open in it, whoever opened it, and the file.
 * ierr: 0, or -1 when the identifier is not valid, when the file could not be flushed (what was written may not
 * be on disk) or when a close failed; the others are closed all the same. Nothing is printed. */
VAK_API void VAK_CLOSE(const vak_id *group_id, int32_t *ierr);
VAK_API void VAK1_CLOSE(const vak_id *group_id, int32_t *ierr);

/* Hands what was written so far to the operating system: scope 0 the whole file with all that is mounted or linked
 * open in it, 1 the file alone, any other nothing. Everything written before it reads in a file opened by VAK_OPEN
 * even when the process is killed between two later calls. A flush that finds no room on the disk writes nothing, and
 * may be repeated when there is some; after one that failed on its way writers fail until another succeeds.
 * ierr: always 0; what could not be written shows in VAK_CLOSE. */
VAK_API void VAK_FLUSH(const vak_id *id, const int32_t *scope, int32_t *ierr);
VAK_API void VAK1_FLUSH(const vak_id *id, const int32_t *scope, int32_t *ierr);

/* Opens a group by its path, names joined by '/', from `loc_id`; "/..." starts at the file's root.
 *
 * name_len    length of `name`, or -1 when it ends with a zero byte. A name with a length counts up to a zero
 *             byte, less trailing blanks.
 * ioflag      0 creates what is missing and opens, 1 opens, 2 opens what is there at every level.
 * group_id    receives the group, to be closed by the caller; -1 when ierr is negative.
 *
 * ierr: ioflag 0: the number of groups created; 1 and 2: 0, or -1 without a line when the path does not exist.
 * With a line on standard error: -8 a group cannot be created, or the disk is full; -10 (ioflag 0) or -20 (1, 2)
 * what is there cannot be opened as a group; -30 unknown ioflag; -40 length 0 or below -1; -50 empty name. */
VAK_API void VAK_H5GOPEN(
    const vak_id *loc_id, const char *name, const int32_t *name_len, const int32_t *ioflag,
    vak_id *group_id, int32_t *ierr);
VAK_API void VAK1_H5GOPEN(
    const vak_id *loc_id, const char *name, const int32_t *name_len, const int32_t *ioflag,
    vak_id *group_id, int32_t *ierr);

/* Closes one group. ierr: 0, or -1 when it failed. */
VAK_API void VAK_H5GCLOSE(const vak_id *group_id, int32_t *ierr);
VAK_API void VAK1_H5GCLOSE(const vak_id *group_id, int32_t *ierr);

/* ==== Automatic paths ====================================================== */

/* Opens the group of a block by what its place is made of. Block routines do this themselves; use it to open
 * a block for reading, or to ask whether it is there. The path, from `loc_id`, is
 *
 *     prefix [/state] ... [/name] ... [index] [_set<set>] /vakblock
 *
 * with no "/vakblock" for VAK1_OPENAUTOPATH.
 *
 * name_flags  which names take part: bit 0 name1, ... bit 4 name5.
 * ioflag      as for VAK_H5GOPEN.
 * nstate      the prefix: -1 "multistate", 0 "constant", any other "singlestate".
 * states      int32[nstate]; above 0 states and with `state` below 0: one level for each, the last one outermost.
 * state       with nstate above 0, from 0 on: one level, "state" and 12 digits.
 * name1 ...   fields of 256 characters; one that counts to nothing adds no level. Of those not selected nothing
 *             is read, they may be null.
 * index, set  from 0 on put behind the last name, "NODE3_set2"; below 0 left out.
 *
 * group_id and ierr: as from VAK_H5GOPEN; nothing else is printed. */
VAK_API void VAK_OPENAUTOPATH(
    const vak_id *loc_id, const int32_t *name_flags, const void *ignored, const int32_t *ioflag,
    const int32_t *nstate, const int32_t *states, const int32_t *state,
    const char *name1, const char *name2, const char *name3, const char *name4, const char *name5,
    const int32_t *index, const int32_t *set,
    vak_id *group_id, int32_t *ierr);
VAK_API void VAK1_OPENAUTOPATH(
    const vak_id *loc_id, const int32_t *name_flags, const void *ignored, const int32_t *ioflag,
    const int32_t *nstate, const int32_t *states, const int32_t *state,
    const char *name1, const char *name2, const char *name3, const char *name4, const char *name5,
    const int32_t *index, const int32_t *set,
    vak_id *group_id, int32_t *ierr);

/* ==== Version, build, chunk size =========================================== */

/* Tells versions as a blank-padded text of 256 characters: `which` 1 the build identifier, 2 "HDF5-1.14.5", 4
 * "VAK-2.2.14", 6 both, any other all three. `verbose` above 0 prints them on standard output too.
 * Result: the significant length of `text`. ierr: 0; -998 when HDF5 is not of the 1.14 series, -999 when it
 * does not tell its version, with a line on standard error, `text` untouched and the result 0. */
VAK_API int32_t VAK_GET_VERSION(char *text, const int32_t *which, const int32_t *verbose, int32_t *ierr);
VAK_API int32_t VAK1_GET_VERSION(char *text, const int32_t *which, const int32_t *verbose, int32_t *ierr);

/* Zero-terminated texts that belong to the library: how it was built, what it is, its source revision.
 * VAK_get_module_info: kind 0 the description, 1 the version line, any other the build line. */
VAK_API const char *VAK_get_build_info(void);
VAK_API const char *VAK_get_module_description(void);
VAK_API const char *VAK_get_module_info(int32_t kind);
VAK_API const char *VAK_get_revision(void);

/* The chunk extent of datasets created from now on, along their growing extents; 1 at first, one value for
 * the whole process. Any value is kept; datasets take those below 1 as 1. Result: the value. */
VAK_API int32_t VAK_GET_CHUNK_SIZE(int32_t *size);
VAK_API int32_t VAK_SET_CHUNK_SIZE(const int32_t *size);

/* ==== File header, key 1 in listings ======================================= */

/* Writes the header: group "vakheader" below `location` (the file's root group), holding one record of 64 characters:
 * the signature 0x89 V A K CR LF 0x1A LF, the format version as text ("2 2 14"; legacy "1 2 0"), blanks.
 * A file has one header. ierr: HDF5's negative answer when the group cannot be made (a second header),
 * otherwise the storage layer's. */
VAK_API void VAK_WRITE_FILEHEADER(const vak_id *location, const void *ignored1, const void *ignored2, int32_t *ierr);
VAK_API void VAK1_WRITE_FILEHEADER(const vak_id *location, const void *ignored1, const void *ignored2, int32_t *ierr);

/* Reads the header found in `location`, the group "vakheader" itself. `version` receives the 32 characters behind the
 * signature, flags and params (two values) the filters of the record: 0 for what this library wrote.
 * ierr: 0; +1 for each wrong byte of the signature, with a warning each; +100 when the version is not
 * the family's own; negative and outputs untouched when there is no readable record. */
VAK_API void VAK_READ_FILEHEADER(
    const vak_id *location, char *version, int32_t *flags, int32_t *params, int32_t *ierr);
VAK_API void VAK1_READ_FILEHEADER(
    const vak_id *location, char *version, int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== System block, key 10 ================================================= */

/* The one system block of a file, at constant/system below `file`: who wrote the file, and its system of units.
 * title, sys, solver_name, solver_vers   texts of 256 characters
 * cdate, ctime, mdate, mtime   dates and times of creation and modification, 8 characters as the caller formats them
 *                              (the state eraser writes YYYYMMDD and HHMMSS)
 * nbunit base units: ubid[nbunit] identifiers, ubtyp and ubnam (256 each) types and names, ubshift and
 *                    ubcon shifts and conversion factors
 * ndunit derived units: udid[ndunit] identifiers, udnam (256 each) names, udscal scales; ndbunit[ndunit] numbers of base
 *                    units that each is made of; their identifiers udbid and exponents udbexp, derived unit after
 *                    derived unit, sum of ndbunit entries
 * ierr: 0; -1 when the file has a system block already ("... already exists"), which then stays as it is. */
VAK_API void VAK_WRITE_SYSTEM(
    const vak_id *file,
    const char *title, const char *sys, const char *solver_name, const char *solver_vers,
    const char *cdate, const char *ctime, const char *mdate, const char *mtime,
    const int32_t *nbunit, const int32_t *ndunit,
    const int32_t *ubid, const char *ubtyp, const char *ubnam, const float *ubshift, const float *ubcon,
    const int32_t *udid, const char *udnam, const float *udscal,
    const int32_t *ndbunit, const int32_t *udbid, const float *udbexp,
    const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);
VAK_API void VAK1_WRITE_SYSTEM(
    const vak_id *file,
    const char *title, const char *sys, const char *solver_name, const char *solver_vers,
    const char *cdate, const char *ctime, const char *mdate, const char *mtime,
    const int32_t *nbunit, const int32_t *ndunit,
    const int32_t *ubid, const char *ubtyp, const char *ubnam, const float *ubshift, const float *ubcon,
    const int32_t *udid, const char *udnam, const float *udscal,
    const int32_t *ndbunit, const int32_t *udbid, const float *udbexp,
    const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);

/* Reads it from its group. ipass 1: the texts and the two counts; 2: everything, with the filters found.
 * ierr: 0; -1 not a system block, or no group; -3 another ipass; otherwise the storage layer's. */
VAK_API void VAK_READ_SYSTEM(
    const vak_id *group, const int32_t *ipass,
    char *title, char *sys, char *solver_name, char *solver_vers,
    char *cdate, char *ctime, char *mdate, char *mtime,
    int32_t *nbunit, int32_t *ndunit,
    int32_t *ubid, char *ubtyp, char *ubnam, float *ubshift, float *ubcon,
    int32_t *udid, char *udnam, float *udscal,
    int32_t *ndbunit, int32_t *udbid, float *udbexp,
    int32_t *flags, int32_t *params, int32_t *ierr);
VAK_API void VAK1_READ_SYSTEM(
    const vak_id *group, const int32_t *ipass,
    char *title, char *sys, char *solver_name, char *solver_vers,
    char *cdate, char *ctime, char *mdate, char *mtime,
    int32_t *nbunit, int32_t *ndunit,
    int32_t *ubid, char *ubtyp, char *ubnam, float *ubshift, float *ubcon,
    int32_t *udid, char *udnam, float *udscal,
    int32_t *ndbunit, int32_t *udbid, float *udbexp,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Index block, key 20 ================================================== */

/* The one index block of a file, at constant/indices below `file`: how many index values the states have (nindex), and
 * of which variable (etypvar). ierr: 0; -1 when the file has an index block already. */
VAK_API void VAK_WRITE_INDEX(
    const vak_id *file, const int32_t *nindex, const char *etypvar,
    const void *ignored1, const void *ignored2, int32_t *ierr);
VAK_API void VAK_READ_INDEX(
    const vak_id *group, const void *ignored1, int32_t *nindex, char *etypvar,
    const void *ignored2, const void *ignored3, int32_t *ierr);

/* Legacy: each index has a name (etypindex, 256 characters each) and a unit: mbunit[nindex] numbers of base units and
 * mdunit[nindex] numbers of derived units; identifiers ubid and exponents ubexp of the base units, index after
 * index (sum of mbunit entries), udid and udexp likewise (sum of mdunit). Reading: ipass 1 nindex, 2 everything. */
VAK_API void VAK1_WRITE_INDEX(
    const vak_id *file, const int32_t *nindex, const char *etypindex,
    const int32_t *mbunit, const int32_t *mdunit,
    const int32_t *ubid, const float *ubexp, const int32_t *udid, const float *udexp,
    const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);
VAK_API void VAK1_READ_INDEX(
    const vak_id *group, const int32_t *ipass, int32_t *nindex, char *etypindex,
    int32_t *mbunit, int32_t *mdunit,
    int32_t *ubid, float *ubexp, int32_t *udid, float *udexp,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Variable blocks, key 30; variable groups, key 32 ===================== */

/* One result variable, at constant/variable/<varkey> below `file`.
 * varkey, varclass, varnam, type   texts; tensor and type are the producer's codes, stored unchanged
 * ncoo        components; rank and ndim tensor rank and dimension
 * mbunit[ncoo], mdunit[ncoo]   numbers of base and derived units in each component's unit; identifiers ubid and
 *             exponents ubexp of the base units, component after component (lenb, the sum of mbunit), udid and
 *             udexp of the derived units (lend, the sum of mdunit)
 * subslen     length of all component subscripts, 0 for none; subscr[subslen] their characters, subscnt[ncoo] their
 *             lengths, subsoffs[ncoo] their offsets in subscr
 * lvmap       1 or more with a map of components onto tensor entries: vmap[ncoo][ndim]...[ndim] (rank times)
 * ierr: 0; -1 the file has this variable already; -3 a sum above 2^31-1 or a negative number of units (nothing is
 * written); otherwise the storage layer's. */
VAK_API void VAK_WRITE_VARIABLE(
    const vak_id *file, const void *ignored1, const void *ignored2,
    const char *varkey, const char *varclass, const char *varnam,
    const int32_t *ncoo, const int32_t *rank, const int32_t *ndim, const int32_t *tensor, const char *type,
    const int32_t *lvmap, const int32_t *subslen,
    const int32_t *mbunit, const int32_t *mdunit,
    const int32_t *ubid, const float *ubexp, const int32_t *udid, const float *udexp,
    const char *subscr, const int32_t *subscnt, const int32_t *subsoffs, const float *vmap,
    const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);

/* Reads it. mode 1: the texts and counts; 2: the arrays that the counts call for, with the filters found;
 * 3: both; otherwise nothing but the key. ierr: 0; -1 not a variable, or no group. */
VAK_API void VAK_READ_VARIABLE(
    const vak_id *group, const int32_t *mode, const void *ignored,
    char *varkey, char *varclass, char *varnam,
    int32_t *ncoo, int32_t *rank, int32_t *ndim, int32_t *tensor, char *type,
    int32_t *lenb, int32_t *lend, int32_t *lvmap, int32_t *subslen,
    int32_t *mbunit, int32_t *mdunit,
    int32_t *ubid, float *ubexp, int32_t *udid, float *udexp,
    char *subscr, int32_t *subscnt, int32_t *subsoffs, float *vmap,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* The nvar variables of one entity type (etypvar), at constant/variablegroup/<name>: cnt[nvar] components of each,
 * offs[nvar] offset of each one's first component, varkey (256 characters each) its key; ncoo components in all.
 * Reading: mode 1 attributes, 2 arrays. ierr as for variables. */
VAK_API void VAK_WRITE_VARIABLEGROUP(
    const vak_id *file, const char *etypvar, const void *ignored, const char *name,
    const int32_t *nvar, const int32_t *ncoo, const int32_t *cnt, const int32_t *offs, const char *varkey,
    const int32_t *flags, const int32_t *params, int32_t *ierr);
VAK_API void VAK_READ_VARIABLEGROUP(
    const vak_id *group, const int32_t *mode, const void *ignored,
    char *etypvar, int32_t *nvar, int32_t *ncoo, int32_t *cnt, int32_t *offs, char *varkey,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* Legacy: all variables of one entity type, at constant/variables/<etypvar>: units as above; cname (256 characters each),
 * cid[ncoo] and comp[ncoo] name, identifier and component of each. Reading: ipass 1 attributes, 2 everything.
 * ierr: 0; -1 already there, or not such a block; -3 another ipass. */
VAK_API void VAK1_WRITE_VARIABLES(
    const vak_id *file, const char *etypvar,
    const int32_t *idtrans, const int32_t *rank, const int32_t *ndim, const int32_t *ncoo,
    const int32_t *mbunit, const int32_t *mdunit,
    const int32_t *ubid, const float *ubexp, const int32_t *udid, const float *udexp,
    const char *cname, const int32_t *cid, const int32_t *comp,
    const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);
VAK_API void VAK1_READ_VARIABLES(
    const vak_id *group, const int32_t *ipass, char *etypvar,
    int32_t *idtrans, int32_t *rank, int32_t *ndim, int32_t *ncoo,
    int32_t *mbunit, int32_t *mdunit,
    int32_t *ubid, float *ubexp, int32_t *udid, float *udexp,
    char *cname, int32_t *cid, int32_t *comp,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Text block, key 40 =================================================== */

/* A named text of nlines lines of `length` characters each, at <prefix>/text/<name> below `file`; nindex and state place
 * it under "constant" or its state. line: nlines fields of `length` characters, stored as they are; with a length of 0 or
 * less there are none. ierr: 0; -1 such a text is there already; otherwise the storage layer's. */
VAK_API void VAK_WRITE_TEXT(
    const vak_id *file, const char *name,
    const int32_t *nlines, const int32_t *length,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const char *line,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);

/* Reads it. mode 1: the counts; 2: index values (when nindex > 0) and lines, with the filters found; 3: both, into arrays
 * that are large enough. The counts that mode 2 goes by are those in the caller's variables.
 * ierr: 0; -1 not a text, or no group; otherwise the storage layer's. */
VAK_API void VAK_READ_TEXT(
    const vak_id *group, const int32_t *mode, const void *ignored,
    int32_t *nlines, int32_t *length,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    char *line,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* Legacy: at constant/text/<etyptext>, without index. Reading: ipass 1 etyptext and the counts, 2 everything;
 * another one is -3. */
VAK_API void VAK1_WRITE_TEXT(
    const vak_id *file, const char *etyptext,
    const int32_t *nlines, const int32_t *length,
    const char *line,
    const int32_t *flags, const int32_t *params, int32_t *ierr);
VAK_API void VAK1_READ_TEXT(
    const vak_id *group, const int32_t *ipass,
    char *etyptext, int32_t *nlines, int32_t *length,
    char *line,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Parts block, key 100 ================================================= */

/* The npart parts of one part entity type, at <prefix>/parts/<etyppart> below `file`.
 * off         sum of the columns that are left out: 1 mid, 2 mtyp, 4 pcol; their arguments are not looked at
 * length      characters of a title, 0 for no titles
 * pid, title, mid, mtyp, pcol   identifier, title, material identifier, material type and colour of each part
 * ierr: 0; -1 such a block is there already; otherwise the storage layer's. */
VAK_API void VAK_WRITE_PARTS(
    const vak_id *file, const char *etyppart,
    const int32_t *npart, const int32_t *off, const int32_t *length,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *pid, const char *title, const int32_t *mid, const int32_t *mtyp, const int32_t *pcol,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);
VAK_API void VAK1_WRITE_PARTS(
    const vak_id *file, const char *etyppart,
    const int32_t *npart, const int32_t *off, const int32_t *length,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *pid, const char *title, const int32_t *mid, const int32_t *mtyp, const int32_t *pcol,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *float_size, int32_t *ierr);

/* Reads it. mode 1: the attributes; 2: index values (when nindex > 0) and the columns that length and off call for, with
 * the filters found; 3: both. ierr: 0; -1 not a parts block, or no group; otherwise the storage layer's.
 * Legacy: ipass 1 the attributes, 0 these and the index values, 2 or 3 everything; another one is -3. */
VAK_API void VAK_READ_PARTS(
    const vak_id *group, const int32_t *mode,
    char *etyppart, int32_t *npart, int32_t *off, int32_t *length,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *pid, char *title, int32_t *mid, int32_t *mtyp, int32_t *pcol,
    int32_t *flags, int32_t *params, int32_t *ierr);
VAK_API void VAK1_READ_PARTS(
    const vak_id *group, const int32_t *ipass,
    char *etyppart, int32_t *npart, int32_t *off, int32_t *length,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *pid, char *title, int32_t *mid, int32_t *mtyp, int32_t *pcol,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Attributes, key 200; identifiers, key 250 ============================ */

/* What each of nent entities of one type is called, at <prefix>/attributes/<etyp> or <prefix>/identifiers/<etyp>.
 * entid[nent]         identifiers
 * title               titles of `length` characters each; none with a length of 0
 * uid[nent][nuid]     further identifiers; none with nuid 0
 * ierr: 0; -1 such a block is there already; otherwise the storage layer's. */
VAK_API void VAK_WRITE_ATTRIBUTES(
    const vak_id *file, const char *etyp,
    const int32_t *nent, const int32_t *nuid, const int32_t *length,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const char *title, const int32_t *uid,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *real_size, int32_t *ierr);
VAK_API void VAK_WRITE_IDENTIFIERS(
    const vak_id *file, const char *etyp,
    const int32_t *nent, const int32_t *nuid, const int32_t *length,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const char *title, const int32_t *uid,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *real_size, int32_t *ierr);

/* Reads it. mode is a sum: 1 the attributes; 2 the index values, when nindex > 0; 8 entid, title and uid, with the filters
 * found. The counts that 2 and 8 go by are those in the caller's variables, so that arrays are
 * allocated after a call with 1. ierr: 0; the key (200, 250) when the mode reads nothing; -1 another kind
 * of block, or no group; otherwise the storage layer's. */
VAK_API void VAK_READ_ATTRIBUTES(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *nent, int32_t *nuid, int32_t *length,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *entid, char *title, int32_t *uid,
    int32_t *flags, int32_t *params, int32_t *ierr);
VAK_API void VAK_READ_IDENTIFIERS(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *nent, int32_t *nuid, int32_t *length,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *entid, char *title, int32_t *uid,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* Legacy: attributes only, with titles of 256 characters. Reading: ipass 1 the attributes, 0 these and the index values,
 * 2 everything; another one is -3. Pass 2 delivers the counts anew: the arrays must have room for what is stored. */
VAK_API void VAK1_WRITE_ATTRIBUTES(
    const vak_id *file, const char *etyp,
    const int32_t *nent, const int32_t *nuid,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const char *title, const int32_t *uid,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *real_size, int32_t *ierr);
VAK_API void VAK1_READ_ATTRIBUTES(
    const vak_id *group, const int32_t *ipass,
    char *etyp, int32_t *nent, int32_t *nuid,
    int32_t *nindex, int32_t *indexident, float *indexval,
    int32_t *entid, char *title, int32_t *uid,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Connectivities, key 300 ============================================== */

/* The nele elements of one element type, at <prefix>/connectivities/<etypelem> below `file`.
 * etyp, etypelem, etyppart, etypnode   types of the block's entities, of the elements, of the parts in pid, of the nodes in ic
 * idele[nele], pid[nele]   identifier and part identifier of each element; ndim its spatial dimension
 * ic[nele][npele]          node identifiers
 * iparam[nele][nbint], fparam[nele][nbfloat]   integer and real parameters; etypvar names the real ones
 *                          and counts only with nbfloat > 0
 * ierr: 0; -1 such a block is there already; otherwise the storage layer's. */
VAK_API void VAK_WRITE_CONNECTIVITIES(
    const vak_id *file,
    const char *etyp, const char *etypelem, const char *etyppart, const char *etypnode, const char *etypvar,
    const int32_t *nele, const int32_t *npele, const int32_t *ndim, const int32_t *nbint, const int32_t *nbfloat,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *idele, const int32_t *pid, const int32_t *ic, const int32_t *iparam, const float *fparam,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *real_size, int32_t *ierr);

/* Reads it. mode is a sum: 1 the attributes (etypvar stays as it is with nbfloat 0); 2 the index values, when nindex > 0;
 * 4 idele and pid; 8 ic, iparam and fparam, with the filters found. The counts that 2, 4 and 8 go by are
 * those in the caller's variables. ierr: 0; the key, 300, when the mode reads nothing; -1 another kind of
 * block, or no group; otherwise the storage layer's. */
VAK_API void VAK_READ_CONNECTIVITIES(
    const vak_id *group, const int32_t *mode,
    char *etyp, char *etypelem, char *etyppart, char *etypnode, char *etypvar,
    int32_t *nele, int32_t *npele, int32_t *ndim, int32_t *nbint, int32_t *nbfloat,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *idele, int32_t *pid, int32_t *ic, int32_t *iparam, float *fparam,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* Legacy: in place of etypvar the unit of each real parameter: mbunit[nbfloat] numbers of base units and mdunit[nbfloat]
 * of derived ones; identifiers ubid and exponents ubexp of the base units, parameter after parameter (sum of
 * mbunit entries), udid and udexp likewise (sum of mdunit). Reading: ipass 1 the attributes, 0 these and
 * the index values, 2 everything; another one is -3. The sums are known from mbunit and mdunit only: read these first
 * with null pointers in place of the other arrays. Pass 2 delivers the counts anew: the arrays must have room for what
 * is stored. */
VAK_API void VAK1_WRITE_CONNECTIVITIES(
    const vak_id *file,
    const char *etypelem, const char *etyppart, const char *etypnode,
    const int32_t *nele, const int32_t *npele, const int32_t *ndim, const int32_t *nbint, const int32_t *nbfloat,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *idele, const int32_t *pid, const int32_t *ic,
    const int32_t *mbunit, const int32_t *mdunit,
    const int32_t *ubid, const float *ubexp, const int32_t *udid, const float *udexp,
    const int32_t *iparam, const float *fparam,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *real_size, int32_t *ierr);
VAK_API void VAK1_READ_CONNECTIVITIES(
    const vak_id *group, const int32_t *ipass,
    char *etypelem, char *etyppart, char *etypnode,
    int32_t *nele, int32_t *npele, int32_t *ndim, int32_t *nbint, int32_t *nbfloat,
    int32_t *nindex, int32_t *indexident, float *indexval,
    int32_t *idele, int32_t *pid, int32_t *ic,
    int32_t *mbunit, int32_t *mdunit,
    int32_t *ubid, float *ubexp, int32_t *udid, float *udexp,
    int32_t *iparam, float *fparam,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Collector, key 400 =================================================== */

/* ncoll sets of entities of ntyp types, at <prefix>/collector/<etypcoll> below `file`.
 * idcoll[ncoll]       identifiers of the sets
 * etyp                ntyp names of entity types, 256 characters each
 * nent[ncoll][ntyp]   numbers of entities of each type in each set
 * entid               their identifiers, one list after the other in the order of nent (nenttot entries, the sum of nent)
 * ierr: 0; -1 such a block is there already; -3 a sum above 2^31-1 or a negative number of entities
 * (nothing is written); otherwise the storage layer's. */
VAK_API void VAK_WRITE_COLLECTOR(
    const vak_id *file, const char *etypcoll,
    const int32_t *ncoll, const int32_t *ntyp,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *idcoll, const char *etyp, const int32_t *nent, const int32_t *entid,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *real_size, int32_t *ierr);
VAK_API void VAK1_WRITE_COLLECTOR(
    const vak_id *file, const char *etypcoll,
    const int32_t *ncoll, const int32_t *ntyp,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *idcoll, const char *etyp, const int32_t *nent, const int32_t *entid,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *real_size, int32_t *ierr);

/* Reads it; nenttot stands before etypcoll here. ipass 1: the attributes; 0: these and the index values, when nindex > 0;
 * 2: everything, with the filters found. Every pass delivers the counts anew: the arrays must have room for
 * what is stored. ierr: 0; -1 not a collector, or no group; -3 another ipass; otherwise the storage layer's. */
VAK_API void VAK_READ_COLLECTOR(
    const vak_id *group, const int32_t *ipass,
    int32_t *nenttot, char *etypcoll, int32_t *ncoll, int32_t *ntyp,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *idcoll, char *etyp, int32_t *nent, int32_t *entid,
    int32_t *flags, int32_t *params, int32_t *ierr);
VAK_API void VAK1_READ_COLLECTOR(
    const vak_id *group, const int32_t *ipass,
    int32_t *nenttot, char *etypcoll, int32_t *ncoll, int32_t *ntyp,
    int32_t *nindex, int32_t *indexident, float *indexval,
    int32_t *idcoll, char *etyp, int32_t *nent, int32_t *entid,
    int32_t *flags, int32_t *params, int32_t *ierr);

/* ==== Properties, key 500 ================================================== */

/* Tables of parameters of nent entities of one type in one zone, written into a group that the caller has opened
 * (VAK_OPENAUTOPATH, VAK_H5GOPEN); what is there already is written over.
 * groups      two identifiers: the block's group, and the group of shared identifiers (looked at with mode 16 only)
 * mode        a sum: 1 the attributes; 2 the index values; 4 entid; 8 the tables; 16 (with 4) entid stands once in the
 *             shared group, written by the first block that shares it, and the block gets a hard link to it
 * idparam[nent][nbid], iparam[nent][nbint], fparam[nent][nbfloat]   identifiers, integers, reals of each entity
 * cparam[nent][nbstring]   texts of `length` characters; none with a length of 0. A table without columns is left out.
 * row_mode    0 whole tables; 1 row_count rows from row row_list[0] on; 2 the row_count rows listed in row_list, in that
 *             order. Rows count from 0, and the arrays hold those rows only. A table begun by rows has all its nent rows.
 *             A row_count of 0 does nothing.
 * ierr: 0; the identifier of the block's group when that is negative; -3 no link to the shared identifiers could be made;
 * -999 another row_mode; otherwise the storage layer's (-6031, -6032: a row that is not there). */
VAK_API void VAK_WRITE_PROPERTIES(
    const vak_id *groups, const int32_t *mode,
    const char *etyp, const char *etypprop, const char *etypzone, const int32_t *zoneid,
    const int32_t *nent, const int32_t *nbid, const int32_t *nbint, const int32_t *nbfloat, const int32_t *nbstring,
    const int32_t *length,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *idparam, const int32_t *iparam, const float *fparam, const char *cparam,
    const int32_t *flags, const int32_t *params, const int32_t *real_size,
    const int32_t *row_mode, const int64_t *row_count, const int64_t *row_list, int32_t *ierr);

/* Reads it, with the same modes (16 aside) and row modes; the counts that 2, 4 and 8 go by are those in the caller's
 * variables. The filters found are given with 8. ierr: 0; the key, 500, when the mode reads nothing; -1 another
 * kind of block, or no group; -999 another row_mode; otherwise the storage layer's. */
VAK_API void VAK_READ_PROPERTIES(
    const vak_id *group, const int32_t *mode,
    char *etyp, char *etypprop, char *etypzone, int32_t *zoneid,
    int32_t *nent, int32_t *nbid, int32_t *nbint, int32_t *nbfloat, int32_t *nbstring, int32_t *length,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *idparam, int32_t *iparam, float *fparam, char *cparam,
    int32_t *flags, int32_t *params,
    const int32_t *row_mode, const int64_t *row_count, const int64_t *row_list, int32_t *ierr);

/* ==== Entity results, keys 1000 and 1001 =================================== */

/* Values of one variable on the entities of one type, for one state and zone.
 * etyp        entity type; nent entities with identifiers entid[nent]
 * etypvar     the variable, of ncoo components; res[nent][ncoo] values, or res[nent][ncoo][2] complex ones
 * etypzone, zoneid   zone type and number (below 0: none)
 * etypframe   reference frame; fswitch 0: one frame fidglob for all, 1: fid[nent], one for each entity
 * dmpswitch   1: the block says how domains are joined: op[ncoo], 256 characters each ("SUM", "AVERAGE", "MIN", "MAX"; the
 *             argument called operator elsewhere), and weight[nent]
 * nindex, indexic, indexident[nindex], indexval[nindex]   the state's index values (legacy: no indexic)
 * iset        set number in the path (below 0: none); istate the state number there
 * iopt, ipar  compression; reals of this block are never scale-offset compressed
 * Place: <state>/entityresults/<etyp>/<etypvar>/<etypzone><zoneid>_set<iset>. A block that is there already is written
 * again in place; its shapes must be the same.
 * ierr: 0; -123 fswitch neither 0 nor 1; -1 the block's group cannot be closed; otherwise the storage layer's. */
VAK_API void VAK_WRITE_ENTITYRESULTS(
    const vak_id *file,
    const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *iset, const int32_t *istate,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);
VAK_API void VAK1_WRITE_ENTITYRESULTS(
    const vak_id *file,
    const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *iset, const int32_t *istate,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);

/* Reads it. ipass 1: attributes; 0: attributes and index values; 2: everything, with the filters found.
 * ierr: the key, 1000 (real values) or 1001 (complex), never 0; -1 not such a block, or no group; -3 another ipass;
 * -123 the stored fswitch; otherwise the storage layer's. */
VAK_API void VAK_READ_ENTITYRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);
VAK_API void VAK1_READ_ENTITYRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);

/* The parts of a block, in a group that the caller has opened and keeps open.
 * gids[2]     the block's group, and the shared group (used with 16 only)
 * parts       1 attributes, 2 index values, 4 tables (entid, frames, op, weight), 8 values;
 *             16 with 4: the tables stand once in the shared group, and the block has hard links to them
 * data_size   size of one value of res in memory, 4 or 8
 * mode        0 all values; 1 the slab of icount values at istart, an entry for each of the 2 extents (complex: 3);
 *             2 the *istart points whose coordinates stand in icount, 2 (complex: 3) each
 * ierr as above; -999 another mode (writers say so), a negative group: that number. */
VAK_API void VAK_WRITE_ENTITYRESULTS2(
    const vak_id *gids, const int32_t *parts, const void *ignored,
    const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *data_size, const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize,
    const int32_t *mode, const int64_t *istart, const int64_t *icount, int32_t *ierr);
VAK_API void VAK1_WRITE_ENTITYRESULTS2(
    const vak_id *gids, const int32_t *parts, const void *ignored,
    const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *data_size, const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize,
    const int32_t *mode, const int64_t *istart, const int64_t *icount, int32_t *ierr);

VAK_API void VAK_READ_ENTITYRESULTS2(
    const vak_id *group, const int32_t *parts, const void *ignored,
    char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    const int32_t *data_size, int32_t *iopt, int32_t *ipar,
    const int32_t *mode, const int64_t *istart, const int64_t *icount, int32_t *ierr);
VAK_API void VAK1_READ_ENTITYRESULTS2(
    const vak_id *group, const int32_t *parts, const void *ignored,
    char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    const int32_t *data_size, int32_t *iopt, int32_t *ipar,
    const int32_t *mode, const int64_t *istart, const int64_t *icount, int32_t *ierr);

/* ==== Multi-state entity results, keys 1050 and 1051 ======================= */

/* A series of states of one variable on one list of entities, in one block that grows along its state axis.
 * Fields as for entity results, per state: indexident and indexval [state][nindex], res[state][nent][ncoo] or
 * [state][nent][ncoo][2]. Attributes and tables are written with the first call for a block and never again.
 * series      name of the series; set as iset
 * place       0 and above: `place` states behind those that are there; "nstate" is stored
 *             below 0: one state, -place rows behind the end (rows that it skips hold the fill value); "nstate" is
 *             not stored, and readers count the states by themselves
 * iopt, ipar  as for entity results, but res may be scale-offset compressed
 * ivsize      bit 1024 is ignored
 * Place: multistate/<series>/multientityresults/<etyp>/<etypvar>/<etypzone><zoneid>_set<set>.
 * The number of states in a chunk is that of VAK_SET_CHUNK_SIZE when the block is made.
 * ierr: 0; -123 fswitch neither 0 nor 1; -1 the block's group cannot be closed; -3 more than 2^31-1 states (nothing is
 * appended); otherwise the storage layer's. Index rows of a call that failed before its values were stored are
 * not counted as a state, and the next call takes their place. */
VAK_API void VAK_WRITE_MULTIENTITYRESULTS(
    const vak_id *file,
    const char *series, const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *set, const int32_t *place,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);
VAK_API void VAK1_WRITE_MULTIENTITYRESULTS(
    const vak_id *file,
    const char *series, const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *set, const int32_t *place,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);

/* The same; with place below 0 and a mode other than 0 the caller says which part of the states it appends.
 * mode 1: a slab of count[] at start[], one entry for each extent of res (3, complex 4), the start along the state axis
 *         counted from the end; indexident and indexval hold count[0] rows
 * mode 2: the count[0] points whose coordinates stand in start[], 3 (complex 4) each, the state counted from the end;
 *         indexident and indexval hold a row for each state that the points lie in, in the order in which they
 *         appear. The state axis grows to the largest state only, not one more, as this format has it, so that a
 *         point in that state is refused: -3999
 * ierr as above; -999 another mode. */
VAK_API void VAK_WRITE_MULTIENTITYRESULTC(
    const vak_id *file,
    const char *series, const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *set, const int32_t *place,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *ierr);
VAK_API void VAK1_WRITE_MULTIENTITYRESULTC(
    const vak_id *file,
    const char *series, const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *set, const int32_t *place,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *ierr);

/* The same for a block's group that the caller has opened and keeps open.
 * res_size    size of one value of res in memory, 4 or 8
 * nstates     states that mode 0 appends
 * nstate      receives the number of states then in the block (after a failure, of those before the call)
 * ierr as above; -999 also nstates below 0 in mode 0; a negative group: that number. */
VAK_API void VAK_WRITE_MULTIENTITYRESULTS2(
    const vak_id *group, const void *ignored1, const void *ignored2,
    const char *series, const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *res_size, const int32_t *nstates,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *nstate, int32_t *ierr);
VAK_API void VAK1_WRITE_MULTIENTITYRESULTS2(
    const vak_id *group, const void *ignored1, const void *ignored2,
    const char *series, const char *etyp, const int32_t *nent, const char *etypvar, const int32_t *ncoo,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *fidglob, const int32_t *fid, const char *op, const float *weight, const float *res,
    const int32_t *res_size, const int32_t *nstates,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *nstate, int32_t *ierr);

/* Reads a series. ipass 1: attributes; 0: attributes and index values; 2: everything, with the filters found.
 * nstate is the number of states that are stored, however they were appended.
 * ierr: the key, 1050 (real values) or 1051 (complex), never 0; -1 not such a block, or no group; -3 another ipass;
 * -123 the stored fswitch; otherwise the storage layer's. */
VAK_API void VAK_READ_MULTIENTITYRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);
VAK_API void VAK1_READ_MULTIENTITYRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);

/* The same for a part of the values: mode 0 all; 1 the slab of count[] at start[], 3 (complex 4) entries each, with the
 * index values of the states in it; 2 the count[0] points whose coordinates stand in start[], with all index
 * values. One entity's history or one state's values are read without the rest. ierr as above; -999 another mode. */
VAK_API void VAK_READ_MULTIENTITYRESULTC(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *ierr);
VAK_API void VAK1_READ_MULTIENTITYRESULTC(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *ierr);

/* The same by parts: 1 attributes, 2 index values, 4 tables, 8 values; what is not read is taken from the arguments
 * (nent, ncoo, nindex, nstate, fswitch, dmpswitch). data_size is the size of one value of res in memory, 4 or 8. */
VAK_API void VAK_READ_MULTIENTITYRESULTS2(
    const vak_id *group, const int32_t *parts, const void *ignored,
    char *series, char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    const int32_t *data_size, int32_t *iopt, int32_t *ipar,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *ierr);
VAK_API void VAK1_READ_MULTIENTITYRESULTS2(
    const vak_id *group, const int32_t *parts, const void *ignored,
    char *series, char *etyp, int32_t *nent, char *etypvar, int32_t *ncoo,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *fidglob, int32_t *fid, char *op, float *weight, float *res,
    const int32_t *data_size, int32_t *iopt, int32_t *ipar,
    const int32_t *mode, const int64_t *count, const int64_t *start, int32_t *ierr);

/* ==== Element results, keys 1100 and 1101 ================================== */

/* Values of one variable at locations inside the elements of one type (integration points, element nodes), for one state
 * and zone. Fields as for entity results, with these differences:
 * etypelem    element type; nele elements with identifiers idele[nele]
 * numl        locations in each element; eloc[numl][ndim] their coordinates
 * fswitch     0: one frame fidglob; 1: fid[nele]; 2: fid[nele][numl], one for each location
 * weight[nele]; res[nele][numl][ncoo] values, or res[nele][numl][ncoo][2] complex ones
 * iopt        res may be scale-offset compressed, the other reals are not
 * Both families have indexic here.
 * Place: <state>/elementresults/<etypelem>/<etypvar>/<etypzone><zoneid>_set<iset>. A block that is there already is
 * written again in place; its shapes must be the same.
 * When the call succeeds the block's group stays open, in both families; VAK_CLOSE closes it with the file.
 * ierr: 0; -123 fswitch neither 0, 1 nor 2; otherwise the storage layer's. */
VAK_API void VAK_WRITE_ELEMENTRESULTS(
    const vak_id *file,
    const char *etypelem, const int32_t *nele, const char *etypvar, const int32_t *ncoo, const int32_t *numl, const int32_t *ndim,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *idele, const int32_t *fidglob, const int32_t *fid, const float *eloc,
    const char *op, const float *weight, const float *res,
    const int32_t *iset, const int32_t *istate,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);
VAK_API void VAK1_WRITE_ELEMENTRESULTS(
    const vak_id *file,
    const char *etypelem, const int32_t *nele, const char *etypvar, const int32_t *ncoo, const int32_t *numl, const int32_t *ndim,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *idele, const int32_t *fidglob, const int32_t *fid, const float *eloc,
    const char *op, const float *weight, const float *res,
    const int32_t *iset, const int32_t *istate,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);

/* Reads it. ipass 1: attributes; 0: attributes and index values; 2: everything, with the filters found.
 * ierr: the key, 1100 (real values) or 1101 (complex), never 0; -1 not such a block, or no group; -3 another ipass;
 * -123 the stored fswitch; otherwise the storage layer's. */
VAK_API void VAK_READ_ELEMENTRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *etypelem, int32_t *nele, char *etypvar, int32_t *ncoo, int32_t *numl, int32_t *ndim,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *idele, int32_t *fidglob, int32_t *fid, float *eloc,
    char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);
VAK_API void VAK1_READ_ELEMENTRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *etypelem, int32_t *nele, char *etypvar, int32_t *ncoo, int32_t *numl, int32_t *ndim,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *idele, int32_t *fidglob, int32_t *fid, float *eloc,
    char *op, float *weight, float *res,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);

/* ==== Multi-state element results, keys 1150 and 1151 ====================== */

/* A series of states of element results, in one block that grows along its state axis. Each call appends one state
 * behind those that are there: indexident[nindex], indexval[nindex] and res of that state. Attributes and tables are
 * written with the first call for a block and never again. The group is closed.
 * series      name of the series
 * ipos        the caller's own numbering; it leaves no gaps
 * Place: multistate/<series>/multielementresults/<etypelem>/<etypvar>/<etypzone><zoneid>_set<iset>.
 * ierr: 0; -123 fswitch neither 0, 1 nor 2; -1 the block's group cannot be closed; otherwise the storage layer's. Index
 * rows of a call that failed before its values were stored are not counted as a state. */
VAK_API void VAK_WRITE_MULTIELEMENTRESULTS(
    const vak_id *file,
    const char *series, const char *etypelem, const int32_t *nele,
    const char *etypvar, const int32_t *ncoo, const int32_t *numl, const int32_t *ndim,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *idele, const int32_t *fidglob, const int32_t *fid, const float *eloc,
    const char *op, const float *weight, const float *res,
    const int32_t *iset, const int32_t *ipos,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);
VAK_API void VAK1_WRITE_MULTIELEMENTRESULTS(
    const vak_id *file,
    const char *series, const char *etypelem, const int32_t *nele,
    const char *etypvar, const int32_t *ncoo, const int32_t *numl, const int32_t *ndim,
    const char *etypzone, const int32_t *zoneid, const char *etypframe, const int32_t *fswitch, const int32_t *dmpswitch,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *idele, const int32_t *fidglob, const int32_t *fid, const float *eloc,
    const char *op, const float *weight, const float *res,
    const int32_t *iset, const int32_t *ipos,
    const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);

/* Reads one state of it, the one whose place from 0 is ipos; nstate is the number of states that are stored.
 * ipass 1: attributes; 0: attributes and the state's index values; 2: everything, with the filters found.
 * ierr: the key, 1150 (real values) or 1151 (complex), never 0; -1 not such a block, or no group; -3 another ipass;
 * -123 the stored fswitch; -6031 no such state; otherwise the storage layer's. */
VAK_API void VAK_READ_MULTIELEMENTRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etypelem, int32_t *nele,
    char *etypvar, int32_t *ncoo, int32_t *numl, int32_t *ndim,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *idele, int32_t *fidglob, int32_t *fid, float *eloc,
    char *op, float *weight, float *res,
    const int32_t *ipos, int32_t *iopt, int32_t *ipar, int32_t *ierr);
VAK_API void VAK1_READ_MULTIELEMENTRESULTS(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etypelem, int32_t *nele,
    char *etypvar, int32_t *ncoo, int32_t *numl, int32_t *ndim,
    char *etypzone, int32_t *zoneid, char *etypframe, int32_t *fswitch, int32_t *dmpswitch,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *idele, int32_t *fidglob, int32_t *fid, float *eloc,
    char *op, float *weight, float *res,
    const int32_t *ipos, int32_t *iopt, int32_t *ipar, int32_t *ierr);

/* ==== Activation flags, keys 2100 and 2150 ================================= */

/* Which of the nent entities of one type are active in a state: entid[nent] their identifiers, status[nent] a number each.
 * ivsize is the size of the stored index values, 4 or 8 (0 and below mean 4), without complex codes.
 * Place: <state>/activflags/<etyp>. Both families have indexic here.
 * ierr: 0; -1 the state has activation flags already ("... already exists"), which then stay as they are; otherwise the
 * storage layer's. */
VAK_API void VAK_WRITE_ACTIVFLAGS(
    const vak_id *file,
    const char *etyp, const int32_t *nent,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *status,
    const int32_t *istate, const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);
VAK_API void VAK1_WRITE_ACTIVFLAGS(
    const vak_id *file,
    const char *etyp, const int32_t *nent,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *status,
    const int32_t *istate, const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);

/* Reads them. ipass 1: attributes; 0: attributes and index values; 2: everything, with the filters found.
 * ierr: 0; -1 not such a block, or no group; -3 another ipass; otherwise the storage layer's. */
VAK_API void VAK_READ_ACTIVFLAGS(
    const vak_id *group, const int32_t *ipass,
    char *etyp, int32_t *nent,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *status,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);
VAK_API void VAK1_READ_ACTIVFLAGS(
    const vak_id *group, const int32_t *ipass,
    char *etyp, int32_t *nent,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *status,
    int32_t *iopt, int32_t *ipar, int32_t *ierr);

/* A series of states of activation flags, in one block that grows along its state axis. Each call appends one state
 * behind those that are there; attributes and entid are written with the first call for a block and never again.
 * ipos is the caller's own numbering; it leaves no gaps. Place: multistate/<series>/multiactivflags/<etyp>.
 * ierr: 0; -1 the block's group cannot be closed; otherwise the storage layer's. */
VAK_API void VAK_WRITE_MULTIACTIVFLAGS(
    const vak_id *file,
    const char *series, const char *etyp, const int32_t *nent,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *status,
    const int32_t *ipos, const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);
VAK_API void VAK1_WRITE_MULTIACTIVFLAGS(
    const vak_id *file,
    const char *series, const char *etyp, const int32_t *nent,
    const int32_t *nindex, const int32_t *indexident, const float *indexval,
    const int32_t *entid, const int32_t *status,
    const int32_t *ipos, const int32_t *iopt, const int32_t *ipar, const int32_t *ivsize, int32_t *ierr);

/* Reads one state of it, the one whose place from 0 is ipos; nstate is the number of states that are stored.
 * ipass 1: attributes; 0: attributes and the state's index values; 2: everything, with the filters found.
 * ierr: 0; -1 not such a block, or no group; -3 another ipass; -6031 no such state; otherwise the storage layer's. */
VAK_API void VAK_READ_MULTIACTIVFLAGS(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etyp, int32_t *nent,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *status,
    const int32_t *ipos, int32_t *iopt, int32_t *ipar, int32_t *ierr);
VAK_API void VAK1_READ_MULTIACTIVFLAGS(
    const vak_id *group, const int32_t *ipass,
    char *series, char *etyp, int32_t *nent,
    int32_t *nindex, int32_t *nstate, int32_t *indexident, float *indexval,
    int32_t *entid, int32_t *status,
    const int32_t *ipos, int32_t *iopt, int32_t *ipar, int32_t *ierr);

/* ==== Dense matrix, keys 10000 and 10001 =================================== */

/* A matrix of nrow rows and ncolumn columns, val[nrow][ncolumn] or, complex, val[nrow][ncolumn][2], of entity entid
 * (below 0: none) of type etyp, of variable type etypvar.
 * Place: <state>/densematrix/<etyp>/<etypvar><entid>.
 * ivsize      form of the values; a new block takes its key from it
 * mode        0 all values; 1 the slab of `counts` values at `starts`, an entry for each of the 2 extents (complex: 3);
 *             2 the *counts points whose coordinates stand in `starts`, 2 (complex: 3) each
 * A block that is there already keeps its attributes and index values and receives the values alone: this is how a
 * matrix is completed piece by piece. ierr: 0; otherwise the storage layer's. */
VAK_API void VAK_WRITE_DENSEMATRIX(
    const vak_id *file,
    const char *etyp, const int32_t *entid, const char *etypvar, const int32_t *nrow, const int32_t *ncolumn,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval, const float *val,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *ivsize,
    const int32_t *mode, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK1_WRITE_DENSEMATRIX(
    const vak_id *file,
    const char *etyp, const int32_t *entid, const char *etypvar, const int32_t *nrow, const int32_t *ncolumn,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval, const float *val,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *ivsize,
    const int32_t *mode, const int64_t *counts, const int64_t *starts, int32_t *ierr);

/* Reads it. mode 0: attributes and index values; 1: attributes; 2: everything; 3: the slab of `counts` values at
 * `starts`, 4: the *counts points at `starts`, both with the caller's nrow and ncolumn and nothing else. Modes 2, 3 and 4
 * give the filters found. ierr: 0; -1 not a dense matrix, or no group; -3 another mode. */
VAK_API void VAK_READ_DENSEMATRIX(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *entid, char *etypvar, int32_t *nrow, int32_t *ncolumn,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval, float *val,
    int32_t *flags, int32_t *params, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK1_READ_DENSEMATRIX(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *entid, char *etypvar, int32_t *nrow, int32_t *ncolumn,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval, float *val,
    int32_t *flags, int32_t *params, const int64_t *counts, const int64_t *starts, int32_t *ierr);

/* ==== Triangular matrix, keys 10100 and 10101 ============================== */

/* A symmetric matrix of order nsize as its packed triangle, val[nsize(nsize+1)/2] or, complex, with a last extent of 2,
 * in the order in which the caller packs it; matrixtype is the caller's code, stored unchanged. etyp and entid are part of the
 * place only: the reader leaves them untouched. Otherwise as for dense matrices, with 1 extent (complex: 2). */
VAK_API void VAK_WRITE_TRIANGULARMATRIX(
    const vak_id *file,
    const char *etyp, const int32_t *entid, const char *etypvar, const int32_t *nsize, const int32_t *matrixtype,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval, const float *val,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *ivsize,
    const int32_t *mode, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK1_WRITE_TRIANGULARMATRIX(
    const vak_id *file,
    const char *etyp, const int32_t *entid, const char *etypvar, const int32_t *nsize, const int32_t *matrixtype,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval, const float *val,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *ivsize,
    const int32_t *mode, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK_READ_TRIANGULARMATRIX(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *entid, char *etypvar, int32_t *nsize, int32_t *matrixtype,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval, float *val,
    int32_t *flags, int32_t *params, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK1_READ_TRIANGULARMATRIX(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *entid, char *etypvar, int32_t *nsize, int32_t *matrixtype,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval, float *val,
    int32_t *flags, int32_t *params, const int64_t *counts, const int64_t *starts, int32_t *ierr);

/* ==== Sparse matrix, keys 10200 and 10201 ================================== */

/* A matrix of nrow rows in compressed-row form: colind[nnz] column indices and val[nnz] values (complex: val[nnz][2]) of
 * its nnz entries, row after row; rowptr[nrow+1] the position of each row's first entry, and the end. Indices count
 * from what the caller likes; they are stored unchanged. etyp and entid are part of the place only: the
 * reader leaves them untouched. colind and rowptr are written with a new block, and read by mode 2 alone. Otherwise
 * as for dense matrices, with 1 extent (complex: 2). With nnz 0 there is no "colind" and no "val". */
VAK_API void VAK_WRITE_SPARSEMATRIX(
    const vak_id *file,
    const char *etyp, const int32_t *entid, const char *etypvar, const int32_t *nrow, const int64_t *nnz,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *colind, const int64_t *rowptr, const float *val,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *ivsize,
    const int32_t *mode, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK1_WRITE_SPARSEMATRIX(
    const vak_id *file,
    const char *etyp, const int32_t *entid, const char *etypvar, const int32_t *nrow, const int64_t *nnz,
    const int32_t *nindex, const int32_t *indexic, const int32_t *indexident, const float *indexval,
    const int32_t *colind, const int64_t *rowptr, const float *val,
    const int32_t *state, const int32_t *flags, const int32_t *params, const int32_t *ivsize,
    const int32_t *mode, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK_READ_SPARSEMATRIX(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *entid, char *etypvar, int32_t *nrow, int64_t *nnz,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *colind, int64_t *rowptr, float *val,
    int32_t *flags, int32_t *params, const int64_t *counts, const int64_t *starts, int32_t *ierr);
VAK_API void VAK1_READ_SPARSEMATRIX(
    const vak_id *group, const int32_t *mode,
    char *etyp, int32_t *entid, char *etypvar, int32_t *nrow, int64_t *nnz,
    int32_t *nindex, int32_t *indexic, int32_t *indexident, float *indexval,
    int32_t *colind, int64_t *rowptr, float *val,
    int32_t *flags, int32_t *params, const int64_t *counts, const int64_t *starts, int32_t *ierr);

/* ==== Block catalogue ====================================================== */

/* Lists the blocks below the group (or file) loc_id, in the order of the names of their groups; vak1_lookup
 * those of the legacy layout. Soft, hard and external links are followed, files behind external links are opened
 * to read only. What leads nowhere and blocks without a readable key are passed over without a message.
 *
 * collect    below 1 counts: gives nblocks and total_len; the other arguments but ierr are not touched and may be
 *            null. Otherwise collects: gives the three arrays too, and with verbose > 0 prints the listing on
 *            standard output.
 * capacity   in, out: blocks for which keys has room, and offsets for one more. Below 1 both are made (10,000).
 * pool_size  in, out: bytes for which paths has room. Below 1 it is made (2,560,000).
 * nblocks    number of blocks. total_len: length of all paths, a zero byte each included.
 * keys       keys[nblocks]: the keys of the blocks, 1 for the file header.
 * offsets    offsets[nblocks+1]: path k begins at paths + offsets[k]; the last is total_len.
 * paths      the paths from loc_id, zero-terminated one after the other, down to the block's own group:
 *            "vakheader", "constant/system/vakblock", legacy "constant/system/header".
 *
 * Who frees: an array that is too small is left as it is, and a larger one with the same contents takes its
 * place. So an array belongs to the caller as before if its pointer comes back unchanged; otherwise it was made
 * by malloc, and the caller frees it, and his own as ever. Two calls, counting and then collecting with
 * capacity = nblocks and pool_size = total_len, allocate nothing.
 * ierr: 0; 1 the list is not complete: no memory for a larger array, a group that cannot be listed, more than
 * 1,024 levels of groups or 10 million links (what was found is delivered); -1 loc_id is no group or file, or
 * no memory (0 blocks, the arrays as passed). */
VAK_API void vak_lookup(
    const vak_id *loc_id,
    const int32_t *collect, const int32_t *verbose, int32_t *capacity, int64_t *pool_size,
    int32_t *nblocks, int64_t *total_len, int32_t **keys, int64_t **offsets, char **paths, int32_t *ierr);
VAK_API void vak1_lookup(
    const vak_id *loc_id,
    const int32_t *collect, const int32_t *verbose, int32_t *capacity, int64_t *pool_size,
    int32_t *nblocks, int64_t *total_len, int32_t **keys, int64_t **offsets, char **paths, int32_t *ierr);

/* The same for the blocks that meet all criteria that apply. A block that lacks what a criterion asks for does
 * not meet it; the file header is listed only when none applies.
 *
 * blocktype, series, etypvar, etypzone   the texts of the block's attributes of these names; not applied when
 *            "undefined" or blank
 * etyp       likewise, the first of etyp, etypelem, etyppart, etypcoll, etyptext that the block has
 * zoneid     the block's attribute; not applied below 0
 * state      the number of the last level of the path that is a state's (state000000000012); not applied below 0
 * nent       the first of nent, nele, npart that the block has; not applied below 0
 * nindex     the block's attribute; -1 is a value of it, so not applied below -1 */
VAK_API void VAK_SEARCHBLOCKS(
    const vak_id *loc_id,
    const char *blocktype, const char *series, const char *etyp, const char *etypvar, const char *etypzone,
    const int32_t *zoneid, const int32_t *state, const int32_t *nent, const int32_t *nindex,
    const int32_t *collect, const int32_t *verbose, int32_t *capacity, int64_t *pool_size,
    int32_t *nblocks, int64_t *total_len, int32_t **keys, int64_t **offsets, char **paths, int32_t *ierr);
VAK_API void VAK1_SEARCHBLOCKS(
    const vak_id *loc_id,
    const char *blocktype, const char *series, const char *etyp, const char *etypvar, const char *etypzone,
    const int32_t *zoneid, const int32_t *state, const int32_t *nent, const int32_t *nindex,
    const int32_t *collect, const int32_t *verbose, int32_t *capacity, int64_t *pool_size,
    int32_t *nblocks, int64_t *total_len, int32_t **keys, int64_t **offsets, char **paths, int32_t *ierr);

/* ==== Counted texts, sorting, searching ==================================== */

/* These take plain values. The significant characters of a field of n characters are those up to its first zero
 * byte, less trailing ones that are not graphic (blanks, control characters). */

/* The number of significant characters; 0 if n < 1. */
VAK_API int32_t VAK_strlen(const char *field, int32_t n);

/* The order of two fields by their significant characters, as unsigned bytes: negative, 0 or positive. A field
 * with which the other begins comes first. */
VAK_API int32_t VAK_strncmp(const char *a, const char *b, int32_t n);

/* Writes the significant characters to the stream. Result: how many were written. */
VAK_API int32_t VAK_putc(const char *field, int32_t n, FILE *stream);

/* Sort perm[lo..hi], positions from 0, hi included, so that the elements with these numbers ascend; the data
 * stay in place. Equal elements keep no particular order, but always the same one.
 * i, j: int32 values. c: fields of len characters one after the other, by VAK_strncmp. cp: pointers to
 * zero-terminated strings, by strcmp. */
VAK_API void vak_iquicksort(const int32_t *values, int32_t *perm, int32_t lo, int32_t hi);
VAK_API void vak_jquicksort(const int32_t *values, int32_t *perm, int32_t lo, int32_t hi);
VAK_API void vak_cquicksort(const char *fields, int32_t *perm, int32_t lo, int32_t hi, int32_t len);
VAK_API void vak_cpquicksort(const char *const *strings, int32_t *perm, int32_t lo, int32_t hi);

/* Search perm[lo..hi] by halving for the key. pos: its position in perm (the element is perm[pos]), or -1. With
 * perm null the position is the element itself. vak_cpbsearch has no perm: element k is the zero-terminated
 * string at pool + offsets[k], or at pool + k with offsets null. */
VAK_API void vak_ibsearch(
    int32_t key, const int32_t *values, const int32_t *perm, int32_t lo, int32_t hi, int32_t *pos);
VAK_API void vak_jbsearch(
    int32_t key, const int32_t *values, const int32_t *perm, int32_t lo, int32_t hi, int32_t *pos);
VAK_API void vak_cbsearch(
    const char *key, const char *fields, const int32_t *perm, int32_t lo, int32_t hi, int32_t len,
    int32_t *pos);
VAK_API void vak_cpbsearch(
    const char *key, const char *pool, const int64_t *offsets, int32_t lo, int32_t hi, int32_t *pos);

/* ==== File tools =========================================================== */

/* External links: for every link of the nsource groups source_ids[nsource], except "post", an external link of the same
 * name in the group dest; with bit 1 of `option` in its group `subgroup` (256 characters), made if missing. Nothing is
 * copied; the links name the source files as they were opened. Prints a banner and a closing line on standard
 * output, with verbose > 0 a line for each link. A link that cannot be made (its name is taken) gives a line on standard
 * error and does not stop the others.
 * ierr: 0; with a subgroup the status of VAK_H5GOPEN for it: the number of groups made, or negative. */
VAK_API void VAK_CREATE_EXTLINKS(
    const vak_id *source_ids, const vak_id *dest, const int32_t *nsource, const char *subgroup,
    const int32_t *option, const int32_t *verbose, int32_t *ierr);
VAK_API void VAK1_CREATE_EXTLINKS(
    const vak_id *source_ids, const vak_id *dest, const int32_t *nsource, const char *subgroup,
    const int32_t *option, const int32_t *verbose, int32_t *ierr);

/* State eraser: removes every state whose index values (indexident) lie after index[nindex], compared entry by entry over
 * the shorter list; equal that far stays. Blocks of single states are deleted, with the groups that become empty;
 * series (multi-state blocks) keep their remaining states, exactly as they were stored; the system block
 * gets a new modification date and time. `group` is the root group of an open file; blocks that external links
 * bring in are left alone. Everything is read and checked before anything is changed, and each series is complete
 * in the file before its old states go. The space becomes free inside the file, which does not shrink.
 * verbose > 0 prints progress on standard output, > 1 every deleted block and group.
 * ierr: 0; -1 no blocks found, a file of another generation, or a deletion that failed; otherwise the storage layer's. */
VAK_API void VAK_ERASE_STATES(
    const vak_id *group, const int32_t *nindex, const int32_t *index, const int32_t *verbose, int32_t *ierr);
VAK_API void VAK1_ERASE_STATES(
    const vak_id *group, const int32_t *nindex, const int32_t *index, const int32_t *verbose, int32_t *ierr);

/* Merger: joins the n files of the domains of a distributed run, files[n] (root groups of open files), in `target`, open for
 * writing. Blocks that describe the run (header, system, indices, variables, texts) are copied from the first file that has
 * them; of blocks of the same place in several files one block is made with the union of their entities, in ascending
 * order of identifiers. Of an entity that several domains have, the values of results with dmpswitch 1 are joined by the
 * operators of their components (SUM, AVERAGE weighted by "weight", MIN, MAX); otherwise the lowest file's stand. Matrices
 * are those of the lowest file. Blocks that do not fit together, and kinds that cannot be merged, are named in a
 * warning. With more than one file, result DMPComputeDomainNumber tells for each element the lowest file that holds it.
 * flags, params   compression of blocks that bring none of their own
 * nvar, names, exponents   variables (256 characters each) and their scale-offset digits, as VAK_READ_PARAM gives them
 * options         1 report on standard output, 2 detailed report, 4 no domain numbers
 * real_size       least size of stored reals, 4 or 8; none is stored narrower than in the widest of the files
 * ierr: 0; 1 a block of more than 5 index values; negative: the status of the step that failed, after its line. What was
 * written until then stays in the target. */
VAK_API void VAK_MERGE_DMP(
    const vak_id *files, const vak_id *target, const int32_t *n, const int32_t *flags, const int32_t *params,
    const int32_t *nvar, const char *names, const int32_t *exponents,
    const int32_t *options, const int32_t *real_size, int32_t *ierr);
VAK_API void VAK1_MERGE_DMP(
    const vak_id *files, const vak_id *target, const int32_t *n, const int32_t *flags, const int32_t *params,
    const int32_t *nvar, const char *names, const int32_t *exponents,
    const int32_t *options, const int32_t *real_size, int32_t *ierr);

/* Compression parameter file: lines of a variable name and a decimal exponent; "$" and "#" begin comments, other lines are
 * passed over. `filename` ends with a zero byte.
 * pass 0   count = number of entries
 * pass 1   count: in, the slots of `names` (256 characters each); out, the entries stored. Every entry of the file is
 *          stored: size the arrays for the file as it is. A longer name runs on into the next slot, if it is one of these.
 * verbosity > 0 prints the table on standard output, its head in pass 0 and its rows in pass 1.
 * ierr: 0; -1 the file cannot be opened. */
VAK_API void VAK_READ_PARAM(
    const char *filename, const void *ignored, const int32_t *pass,
    int32_t *count, char *names, int32_t *exponents, const int32_t *verbosity, int32_t *ierr);

#ifdef __cplusplus
}
#endif

#endif
