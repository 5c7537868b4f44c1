/* Loaded into the tool by LD_PRELOAD, these stand before calls of the system and the allocation of memory, from the start
 * of main on. They pass every call on, except where GRIDFORGE_SYSTEM asks for something else:
 *
 *     watch                     nothing else; calls are logged
 *     kill EVENT WHEN [BYTES]   the process kills itself "before", "within" or "after" the call that is the EVENT-th to
 *                               change a file; "within" a write BYTES are written first
 *     fail FUNCTION N ERROR     the N-th call of the function fails with this errno
 *     lack FUNCTION ERROR       all calls of the function fail with this errno, as on a file system without it; "unnamed" are
 *                               files without a name, "room" are writes to files, "lock" are locks, which fail by this alone
 *     short FUNCTION N          the N-th call of the function reads or writes half of what it is asked for
 *     disturb SEED              at random, reads and writes are short, and calls are interrupted
 *
 * "limits" are reads of what the system tells of itself and of limits. How many there are depends on the machine.
 *
 * The clock stands at GRIDFORGE_SYSTEM_TIME, in seconds since 1970, or at a moment of 2020. The process is told the same
 * number of itself in every run.
 *
 * The file GRIDFORGE_SYSTEM_LOG gets a line for each call that is watched, and for each that is not passed on:
 *
 *     what, function, N, place, caller, role, bytes, event, name      separated by tabs
 *
 * The place stands for the chain of callers. The caller is "tool", or the library that asked on its own. The role is r or w
 * for a file that is read or written, c for a standard stream, and - where there is no file. */
#define _GNU_SOURCE

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <link.h>
#include <pthread.h>
#include <signal.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>
#include <unwind.h>

/* --- The mission -------------------------------------------------------------------------------------------------- */

enum Function {
    OPEN,
    READ,
    LIMITS,
    PREAD,
    WRITE,
    PWRITE,
    CLOSE,
    FTRUNCATE,
    FALLOCATE,
    FADVISE,
    MADVISE,
    MMAP,
    RENAME,
    LINK,
    UNLINK,
    STAT,
    LSEEK,
    OPENDIR,
    READDIR,
    UNNAMED,
    ROOM,
    LOCK,
    MALLOC,
    FUNCTIONS
};

static const char* const names[FUNCTIONS] = {
    "open",      "read",      "limits",  "pread",   "write", "pwrite", "close",
    "ftruncate", "fallocate", "fadvise", "madvise", "mmap",  "rename", "link",
    "unlink",    "stat",      "lseek",   "opendir", "readdir", "unnamed",
    "room",      "lock",      "malloc"};

enum Kind { NOTHING, WATCH, KILL, FAIL, LACK, SHORT, DISTURB };
enum When { BEFORE, WITHIN, AFTER };

static struct {
    enum Kind kind;
    enum Function function;
    long number; /* of the call or event */
    enum When when;
    long bytes;
    int error;
    uint64_t random;
} mission;

static int logFile = -1;
static int armed = 0;
static long calls[FUNCTIONS];
static long events = 0;
/* Held while a call is counted, judged and logged, and while a file gets its name: threads make calls side by side. */
static pthread_mutex_t turn = PTHREAD_MUTEX_INITIALIZER;
/* The module itself is calling. Of this model no thread has to ask for the memory of the variable. */
static __thread int busy __attribute__((tls_model("initial-exec"))) = 0;

static enum Function functionNamed(const char* name)
{
    int i;
    for (i = 0; i < FUNCTIONS && strcmp(names[i], name) != 0; ++i) {
    }
    return (enum Function)i;
}

static enum When whenNamed(const char* name)
{
    return strcmp(name, "before") == 0 ? BEFORE : strcmp(name, "within") == 0 ? WITHIN : AFTER;
}

static void readMission(void)
{
    const char* text = getenv("GRIDFORGE_SYSTEM");
    char word[16] = "";
    if (text == NULL) {
        return;
    }
    if (strcmp(text, "watch") == 0) {
        mission.kind = WATCH;
    } else if (sscanf(text, "kill %ld %15s %ld", &mission.number, word, &mission.bytes) >= 2) {
        mission.kind = KILL;
        mission.when = whenNamed(word);
    } else if (sscanf(text, "fail %15s %ld %d", word, &mission.number, &mission.error) == 3) {
        mission.kind = FAIL;
        mission.function = functionNamed(word);
    } else if (sscanf(text, "lack %15s %d", word, &mission.error) == 2) {
        mission.kind = LACK;
        mission.function = functionNamed(word);
    } else if (sscanf(text, "short %15s %ld", word, &mission.number) == 2) {
        mission.kind = SHORT;
        mission.function = functionNamed(word);
    } else if (sscanf(text, "disturb %ld", &mission.number) == 1) {
        mission.kind = DISTURB;
        mission.random = (uint64_t)mission.number * 2 + 1;
    }
}

static unsigned randomBelow(unsigned limit)
{
    mission.random = mission.random * UINT64_C(6364136223846793005) + UINT64_C(1442695040888963407);
    return (unsigned)(mission.random >> 33) % limit;
}

/* --- The place of a call ------------------------------------------------------------------------------------------- */

/* What is loaded: the executable first. */
struct Module {
    uintptr_t base;
    uintptr_t begin;
    uintptr_t end;
    char name[40];
    int isOwn;     /* this one */
    int isRuntime; /* of C or C++, which calls for somebody else */
};
static struct Module modules[128];
static int moduleCount = 0;
static int objectCount = 0; /* that were looked at, those without code as well */

/* One of the loaded objects, in the order of their loading; `data` counts them. */
static int addModule(struct dl_phdr_info* info, size_t size, void* data)
{
    int* const number = data;
    const char* slash = strrchr(info->dlpi_name, '/');
    const char* name = slash == NULL ? info->dlpi_name : slash + 1;
    struct Module* module = &modules[moduleCount];
    int i;
    (void)size;
    if ((*number)++ < objectCount) {
        return 0;
    }
    ++objectCount;
    for (i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)* part = &info->dlpi_phdr[i];
        if (part->p_type == PT_LOAD && (part->p_flags & PF_X) != 0 && moduleCount < 128) {
            module->base = info->dlpi_addr;
            module->begin = info->dlpi_addr + part->p_vaddr;
            module->end = module->begin + part->p_memsz;
            snprintf(module->name, sizeof module->name, "%s", moduleCount == 0 ? "tool" : name);
            module->isOwn = (uintptr_t)&addModule >= module->begin && (uintptr_t)&addModule < module->end;
            module->isRuntime = strncmp(name, "libc.", 5) == 0 || strncmp(name, "libstdc++.", 10) == 0 ||
                                strncmp(name, "libgcc_s.", 9) == 0 || strncmp(name, "ld-linux", 8) == 0 ||
                                strncmp(name, "libasan.", 8) == 0 || strncmp(name, "libubsan.", 9) == 0;
            ++moduleCount;
            break;
        }
    }
    return 0;
}

static void addModules(void)
{
    int number = 0;
    dl_iterate_phdr(addModule, &number);
}

static const struct Module* knownModuleOf(uintptr_t address)
{
    int i;
    for (i = 0; i < moduleCount; ++i) {
        if (address >= modules[i].begin && address < modules[i].end) {
            return &modules[i];
        }
    }
    return NULL;
}

/* Libraries may be loaded at any time. */
static const struct Module* moduleOf(uintptr_t address)
{
    const struct Module* module = knownModuleOf(address);
    if (module == NULL) {
        addModules();
        module = knownModuleOf(address);
    }
    return module;
}

struct Place {
    uint64_t hash;
    const struct Module* caller;
    int frames;
    int most;
};

/* A sanitizer in the executable takes the calls of libraries before they come here. */
static int isInterceptor(uintptr_t address)
{
    static const char prefix[] = "__interceptor_";
    Dl_info info;
    char name[128];
    if (dladdr((void*)address, &info) == 0 || info.dli_sname == NULL) {
        return 0;
    }
    snprintf(name, sizeof name, "%s%s", prefix, info.dli_sname);
    return strncmp(info.dli_sname, prefix, strlen(prefix)) == 0 || dlsym(RTLD_DEFAULT, name) != NULL;
}

static _Unwind_Reason_Code addFrame(struct _Unwind_Context* context, void* data)
{
    struct Place* place = data;
    const uintptr_t address = (uintptr_t)_Unwind_GetIP(context);
    const struct Module* module = moduleOf(address);
    if (module == NULL || module->isOwn || module->isRuntime || (place->caller == NULL && isInterceptor(address))) {
        return _URC_NO_REASON;
    }
    if (place->caller == NULL) {
        place->caller = module;
    }
    place->hash = (place->hash ^ (uint64_t)(address - module->base) ^ ((uint64_t)(module - modules) << 48)) *
                  UINT64_C(1099511628211);
    ++place->frames;
    return place->frames < place->most ? _URC_NO_REASON : _URC_END_OF_STACK;
}

static struct Place placeOf(enum Function function)
{
    /* Memory is asked for everywhere: there the nearest callers are enough. */
    struct Place place = {UINT64_C(14695981039346656037), NULL, 0, 64};
    if (function == MALLOC) {
        place.most = 3;
    }
    _Unwind_Backtrace(addFrame, &place);
    return place;
}

static const char* callerOf(enum Function function)
{
    const struct Module* caller = placeOf(function).caller;
    return caller == NULL ? "none" : caller->name;
}

/* --- Open files ----------------------------------------------------------------------------------------------------- */

enum { MOST_FILES = 1100 };
static struct {
    char name[256];
    char role; /* 0 where it is not known */
} files[MOST_FILES];

static const char* const kUnnamed = "(unnamed)";

static int isUnnamed(int flags)
{
    return (flags & O_TMPFILE) == O_TMPFILE;
}

static void noteOpen(int file, const char* name, int flags)
{
    if (file > STDERR_FILENO && file < MOST_FILES) {
        pthread_mutex_lock(&turn);
        snprintf(files[file].name, sizeof files[file].name, "%s", name);
        files[file].role = (flags & O_ACCMODE) == O_RDONLY ? 'r' : 'w';
        pthread_mutex_unlock(&turn);
    }
}

/* An unnamed file, as /proc names it, or one that has another name now. */
static void noteName(const char* from, const char* to)
{
    int file = -1;
    pthread_mutex_lock(&turn);
    if (sscanf(from, "/proc/self/fd/%d", &file) != 1) {
        for (file = 0; file < MOST_FILES && (files[file].role == 0 || strcmp(files[file].name, from) != 0); ++file) {
        }
    }
    if (file > STDERR_FILENO && file < MOST_FILES) {
        snprintf(files[file].name, sizeof files[file].name, "%s", to);
    }
    pthread_mutex_unlock(&turn);
}

static char roleOf(int file)
{
    if (file >= 0 && file <= STDERR_FILENO) {
        return 'c';
    }
    return file > 0 && file < MOST_FILES && files[file].role != 0 ? files[file].role : '-';
}

static const char* nameOf(int file)
{
    static const char* const streams[] = {"keyboard", "console", "errors"};
    if (file >= 0 && file <= STDERR_FILENO) {
        return streams[file];
    }
    return file > 0 && file < MOST_FILES ? files[file].name : "";
}

/* --- What becomes of a call ------------------------------------------------------------------------------------------ */

struct Call {
    enum Function function;
    char role;
    const char* name;
    long bytes;   /* asked for; -1 where there are none */
    int isChange; /* of a file */
};

enum Way { PASS, REFUSE, SHORTEN, INTERRUPT, DIE_WITHIN, DIE_AFTER };

struct Verdict {
    enum Way way;
    size_t bytes; /* of SHORTEN and DIE_WITHIN */
};

static void die(void)
{
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
}

/* Places where memory was asked for already: only the first call of each is logged. */
static int isNewPlace(uint64_t hash)
{
    enum { SLOTS = 1 << 16 };
    static uint64_t seen[SLOTS];
    size_t slot = (size_t)(hash % SLOTS);
    while (seen[slot] != 0) {
        if (seen[slot] == hash) {
            return 0;
        }
        slot = (slot + 1) % SLOTS;
    }
    seen[slot] = hash;
    return 1;
}

static void logCall(const char* what, const struct Call* call)
{
    const struct Place place = placeOf(call->function);
    char line[512];
    int length;
    if (logFile < 0 || (mission.kind == WATCH && call->function == MALLOC && !isNewPlace(place.hash))) {
        return;
    }
    length = snprintf(line, sizeof line, "%s\t%s\t%ld\t%016llx\t%s\t%c\t%ld\t%ld\t%.255s\n", what,
                      names[call->function], calls[call->function], (unsigned long long)place.hash,
                      place.caller == NULL ? "none" : place.caller->name, call->role, call->bytes,
                      call->isChange ? events : 0, call->name);
    syscall(SYS_write, logFile, line, (size_t)length);
}

static int mayBeShort(const struct Call* call)
{
    const enum Function f = call->function;
    return (f == READ || f == LIMITS || f == PREAD || f == WRITE || f == PWRITE) && call->bytes > 1;
}

static struct Verdict disturbance(const struct Call* call)
{
    const enum Function f = call->function;
    struct Verdict verdict = {PASS, 0};
    if (f == READ || f == LIMITS || f == PREAD || f == WRITE || f == PWRITE) {
        const unsigned choice = randomBelow(4);
        if (choice == 0) {
            verdict.way = INTERRUPT;
        } else if (choice < 3 && mayBeShort(call)) {
            verdict.way = SHORTEN;
            verdict.bytes = 1 + randomBelow((unsigned)(call->bytes - 1 < 1000000 ? call->bytes - 1 : 1000000));
        }
    } else if ((f == OPEN || f == CLOSE || f == FTRUNCATE || f == FALLOCATE) && randomBelow(3) == 0) {
        verdict.way = INTERRUPT;
    }
    if (verdict.way == INTERRUPT && strcmp(callerOf(f), "tool") != 0) {
        verdict.way = PASS; /* not every library tries again */
    }
    return verdict;
}

static struct Verdict killing(const struct Call* call)
{
    struct Verdict verdict = {PASS, 0};
    if (call->isChange && events == mission.number) {
        logCall("kill", call);
        if (mission.when == BEFORE) {
            die();
        }
        verdict.way = mission.when == WITHIN ? DIE_WITHIN : DIE_AFTER;
        verdict.bytes = (size_t)(mission.bytes < call->bytes ? mission.bytes : call->bytes);
    }
    return verdict;
}

static int isLacking(const struct Call* call)
{
    switch (mission.function) {
    case UNNAMED: return call->name == kUnnamed;
    case ROOM: return (call->function == WRITE || call->function == PWRITE) && call->role == 'w';
    default: return call->function == mission.function;
    }
}

static struct Verdict judge(const struct Call* call)
{
    struct Verdict verdict = {PASS, 0};
    const int isMeant = mission.function == call->function && mission.number == calls[call->function];
    switch (mission.kind) {
    case NOTHING: break;
    case WATCH: logCall("call", call); break;
    case KILL: return killing(call);
    case FAIL:
        if (isMeant) {
            verdict.way = REFUSE;
            logCall("fail", call);
        }
        break;
    case LACK:
        if (isLacking(call)) {
            verdict.way = REFUSE;
            logCall("lack", call);
        }
        break;
    case SHORT:
        if (isMeant && mayBeShort(call)) {
            verdict.way = SHORTEN;
            verdict.bytes = (size_t)(call->bytes / 2);
            logCall("short", call);
        }
        break;
    case DISTURB:
        verdict = disturbance(call);
        if (verdict.way != PASS) {
            logCall(verdict.way == INTERRUPT ? "interrupt" : "short", call);
        }
        break;
    }
    if (verdict.way == INTERRUPT || verdict.way == REFUSE) {
        errno = verdict.way == INTERRUPT ? EINTR : mission.error;
    }
    return verdict;
}

static struct Verdict enter(struct Call call)
{
    struct Verdict verdict = {PASS, 0};
    const int error = errno;
    if (!armed || busy) {
        return verdict;
    }
    busy = 1;
    pthread_mutex_lock(&turn);
    ++calls[call.function];
    if (call.isChange) {
        ++events;
    }
    errno = error;
    verdict = judge(&call);
    pthread_mutex_unlock(&turn);
    busy = 0;
    return verdict;
}

static int isRefused(struct Verdict verdict)
{
    return verdict.way == REFUSE || verdict.way == INTERRUPT;
}

static void leave(struct Verdict verdict)
{
    if (verdict.way == DIE_WITHIN || verdict.way == DIE_AFTER) {
        die();
    }
}

/* --- The calls ------------------------------------------------------------------------------------------------------- */

static void* next(const char* name, void** known)
{
    void* found = __atomic_load_n(known, __ATOMIC_ACQUIRE);
    if (found == NULL) {
        found = dlsym(RTLD_NEXT, name);
        __atomic_store_n(known, found, __ATOMIC_RELEASE);
    }
    return found;
}

/* `real` is the next routine of that name. */
#define REAL(result, name, parameters)                                                                                 \
    static void* known = NULL;                                                                                         \
    void* const found = next(#name, &known);                                                                           \
    result(*real) parameters = NULL;                                                                                   \
    memcpy(&real, &found, sizeof real);

static struct Verdict enterFile(enum Function function, int file, long bytes, int changes)
{
    const struct Call call = {function, roleOf(file), nameOf(file), bytes, changes && roleOf(file) != 'c'};
    return enter(call);
}

static struct Verdict enterName(enum Function function, const char* name, char role, int changes)
{
    const struct Call call = {function, role, name, -1, changes};
    return enter(call);
}

#define OPEN_AS(name)                                                                                                  \
    int name(const char* path, int flags, ...);                                                                        \
    int name(const char* path, int flags, ...)                                                                         \
    {                                                                                                                  \
        REAL(int, name, (const char*, int, ...))                                                                       \
        const int writes = (flags & O_ACCMODE) != O_RDONLY;                                                            \
        const char* const called = isUnnamed(flags) ? kUnnamed : path;                                                 \
        const struct Verdict verdict = enterName(OPEN, called, writes ? 'w' : 'r', writes);                            \
        mode_t mode = 0;                                                                                               \
        int file = -1;                                                                                                 \
        if ((flags & O_CREAT) != 0 || isUnnamed(flags)) {                                                              \
            va_list more;                                                                                              \
            va_start(more, flags);                                                                                     \
            mode = va_arg(more, mode_t);                                                                               \
            va_end(more);                                                                                              \
        }                                                                                                              \
        if (isRefused(verdict)) {                                                                                      \
            return -1;                                                                                                 \
        }                                                                                                              \
        file = real(path, flags, mode);                                                                                \
        leave(verdict);                                                                                                \
        noteOpen(file, called, flags);                                                                                 \
        return file;                                                                                                   \
    }
OPEN_AS(open)
OPEN_AS(open64)

/* A routine that moves `count` bytes. */
#define MOVE_AS(name, function, parameters, changes, whole, part)                                                      \
    ssize_t name parameters;                                                                                           \
    ssize_t name parameters                                                                                            \
    {                                                                                                                  \
        REAL(ssize_t, name, parameters)                                                                                \
        const struct Verdict verdict = enterFile(function, file, (long)count, changes);                                \
        ssize_t moved = -1;                                                                                            \
        if (isRefused(verdict)) {                                                                                      \
            return -1;                                                                                                 \
        }                                                                                                              \
        moved = verdict.way == SHORTEN || verdict.way == DIE_WITHIN ? real part : real whole;                          \
        leave(verdict);                                                                                                \
        return moved;                                                                                                  \
    }
/* The C++ library opens the files that tell of limits, past this module. */
static enum Function readingOf(int file)
{
    return roleOf(file) == '-' ? LIMITS : READ;
}

MOVE_AS(read, readingOf(file), (int file, void* bytes, size_t count), 0, (file, bytes, count), (file, bytes, verdict.bytes))
MOVE_AS(write, WRITE, (int file, const void* bytes, size_t count), 1, (file, bytes, count),
        (file, bytes, verdict.bytes))
MOVE_AS(pread, PREAD, (int file, void* bytes, size_t count, off_t at), 0, (file, bytes, count, at),
        (file, bytes, verdict.bytes, at))
MOVE_AS(pread64, PREAD, (int file, void* bytes, size_t count, off_t at), 0, (file, bytes, count, at),
        (file, bytes, verdict.bytes, at))
MOVE_AS(pwrite, PWRITE, (int file, const void* bytes, size_t count, off_t at), 1, (file, bytes, count, at),
        (file, bytes, verdict.bytes, at))
MOVE_AS(pwrite64, PWRITE, (int file, const void* bytes, size_t count, off_t at), 1, (file, bytes, count, at),
        (file, bytes, verdict.bytes, at))

int close(int file)
{
    REAL(int, close, (int))
    const struct Verdict verdict = enterFile(CLOSE, file, -1, roleOf(file) == 'w');
    const int error = errno;
    int closed;
    if (file > STDERR_FILENO && file < MOST_FILES) {
        files[file].role = 0;
    }
    closed = real(file); /* a close that fails has closed all the same */
    leave(verdict);
    if (isRefused(verdict)) {
        errno = error;
        return -1;
    }
    return closed;
}

/* A routine whose failure is -1 and an errno, or a null pointer. */
#define CALL_AS(result, name, parameters, arguments, entrance, failure)                                                \
    result name parameters;                                                                                            \
    result name parameters                                                                                             \
    {                                                                                                                  \
        REAL(result, name, parameters)                                                                                 \
        const struct Verdict verdict = entrance;                                                                       \
        if (isRefused(verdict)) {                                                                                      \
            return failure;                                                                                            \
        }                                                                                                              \
        {                                                                                                              \
            result const answer = real arguments;                                                                      \
            leave(verdict);                                                                                            \
            return answer;                                                                                             \
        }                                                                                                              \
    }
typedef struct stat Status;
typedef struct stat64 Status64;
typedef struct dirent Entry;
typedef struct dirent64 Entry64;
CALL_AS(int, ftruncate, (int file, off_t length), (file, length), enterFile(FTRUNCATE, file, -1, 1), -1)
CALL_AS(int, ftruncate64, (int file, off_t length), (file, length), enterFile(FTRUNCATE, file, -1, 1), -1)
CALL_AS(int, truncate, (const char* path, off_t length), (path, length), enterName(FTRUNCATE, path, 'w', 1), -1)
CALL_AS(int, fallocate, (int file, int mode, off_t at, off_t length), (file, mode, at, length),
        enterFile(FALLOCATE, file, -1, 1), -1)
CALL_AS(int, posix_fallocate, (int file, off_t at, off_t length), (file, at, length), enterFile(FALLOCATE, file, -1, 1),
        errno)
CALL_AS(int, posix_fadvise, (int file, off_t at, off_t length, int advice), (file, at, length, advice),
        enterFile(FADVISE, file, -1, 0), errno)
CALL_AS(int, madvise, (void* start, size_t length, int advice), (start, length, advice), enterName(MADVISE, "", '-', 0),
        -1)
CALL_AS(void*, mmap, (void* start, size_t length, int rights, int flags, int file, off_t at),
        (start, length, rights, flags, file, at), enterFile(MMAP, file, -1, 0), MAP_FAILED)

/* A routine that gives a file another name. */
#define NAME_AS(name, function, parameters, arguments)                                                                 \
    int name parameters;                                                                                               \
    int name parameters                                                                                                \
    {                                                                                                                  \
        REAL(int, name, parameters)                                                                                    \
        const struct Verdict verdict = enterName(function, to, 'w', 1);                                                \
        int answer = -1;                                                                                               \
        if (isRefused(verdict)) {                                                                                      \
            return -1;                                                                                                 \
        }                                                                                                              \
        answer = real arguments;                                                                                       \
        leave(verdict);                                                                                                \
        if (answer == 0) {                                                                                             \
            noteName(from, to);                                                                                        \
        }                                                                                                              \
        return answer;                                                                                                 \
    }
NAME_AS(rename, RENAME, (const char* from, const char* to), (from, to))
NAME_AS(linkat, LINK, (int fromFolder, const char* from, int toFolder, const char* to, int flags),
        (fromFolder, from, toFolder, to, flags))

CALL_AS(int, unlink, (const char* path), (path), enterName(UNLINK, path, 'w', 1), -1)
CALL_AS(int, stat, (const char* path, Status* status), (path, status), enterName(STAT, path, '-', 0), -1)
CALL_AS(int, stat64, (const char* path, Status64* status), (path, status), enterName(STAT, path, '-', 0), -1)
CALL_AS(int, lstat, (const char* path, Status* status), (path, status), enterName(STAT, path, '-', 0), -1)
CALL_AS(int, lstat64, (const char* path, Status64* status), (path, status), enterName(STAT, path, '-', 0), -1)
CALL_AS(int, fstat, (int file, Status* status), (file, status), enterFile(STAT, file, -1, 0), -1)
CALL_AS(int, fstat64, (int file, Status64* status), (file, status), enterFile(STAT, file, -1, 0), -1)
CALL_AS(off_t, lseek, (int file, off_t at, int from), (file, at, from), enterFile(LSEEK, file, -1, 0), -1)
CALL_AS(off_t, lseek64, (int file, off_t at, int from), (file, at, from), enterFile(LSEEK, file, -1, 0), -1)
CALL_AS(DIR*, opendir, (const char* path), (path), enterName(OPENDIR, path, 'r', 0), NULL)
CALL_AS(Entry*, readdir, (DIR * folder), (folder), enterName(READDIR, "", 'r', 0), NULL)
CALL_AS(Entry64*, readdir64, (DIR * folder), (folder), enterName(READDIR, "", 'r', 0), NULL)

int flock(int file, int operation);
int flock(int file, int operation)
{
    REAL(int, flock, (int, int))
    if (mission.kind == LACK && mission.function == LOCK) {
        enterFile(LOCK, file, -1, 0);
        return -1;
    }
    return real(file, operation);
}

/* Runs are compared, so no clock may go on between them: .dbf files hold the day. */
time_t time(time_t* seconds)
{
    const char* const asked = getenv("GRIDFORGE_SYSTEM_TIME");
    const time_t noon = asked == NULL ? 1600000000 : (time_t)strtoll(asked, NULL, 10);
    if (seconds != NULL) {
        *seconds = noon;
    }
    return noon;
}

/* So that no folder looks as if it had been left alone for a while. */
int clock_gettime(clockid_t clock, struct timespec* moment)
{
    if (clock == CLOCK_REALTIME) {
        moment->tv_sec = time(NULL);
        moment->tv_nsec = 0;
        return 0;
    }
    return (int)syscall(SYS_clock_gettime, clock, moment);
}

/* The number is in the names of passing files: one of fewer digits took fewer allocations. */
pid_t getpid(void)
{
    return armed ? 54321 : (pid_t)syscall(SYS_getpid);
}

/* --- Memory, except where a sanitizer has routines of its own ---------------------------------------------------------- */

#ifdef FAILING_MEMORY
extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* block, size_t size);
extern void* __libc_memalign(size_t alignment, size_t size);

static int mayAllocate(size_t size)
{
    const struct Call call = {MALLOC, '-', "", (long)size, 0};
    return !armed || busy || !isRefused(enter(call));
}

void* malloc(size_t size)
{
    return mayAllocate(size) ? __libc_malloc(size) : NULL;
}

void* calloc(size_t count, size_t size)
{
    return mayAllocate(count * size) ? __libc_calloc(count, size) : NULL;
}

void* realloc(void* block, size_t size)
{
    return mayAllocate(size) ? __libc_realloc(block, size) : NULL;
}

void* memalign(size_t alignment, size_t size);
void* memalign(size_t alignment, size_t size)
{
    return mayAllocate(size) ? __libc_memalign(alignment, size) : NULL;
}

void* aligned_alloc(size_t alignment, size_t size)
{
    return mayAllocate(size) ? __libc_memalign(alignment, size) : NULL;
}

int posix_memalign(void** block, size_t alignment, size_t size)
{
    void* const taken = mayAllocate(size) ? __libc_memalign(alignment, size) : NULL;
    if (taken == NULL) {
        return ENOMEM;
    }
    *block = taken;
    return 0;
}
#endif

/* --- The start --------------------------------------------------------------------------------------------------------- */

typedef int Main(int, char**, char**);
typedef int Start(Main*, int, char**, void (*)(void), void (*)(void), void (*)(void), void*);

static Main* program = NULL;

static void openLog(void)
{
    enum { OUT_OF_THE_WAY = 900 };
    const char* name = getenv("GRIDFORGE_SYSTEM_LOG");
    if (name != NULL) {
        const int file = (int)syscall(SYS_openat, AT_FDCWD, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        logFile = fcntl(file, F_DUPFD_CLOEXEC, OUT_OF_THE_WAY);
        syscall(SYS_close, file);
    }
}

static int watchedMain(int argc, char** argv, char** environment)
{
    addModules();
    readMission();
    openLog();
    armed = mission.kind != NOTHING;
    return program(argc, argv, environment);
}

/* The start of every program, as its C library has it; only the routine to run is another. */
int __libc_start_main(Main* main, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*loaderFini)(void), void* stackEnd);
int __libc_start_main(Main* main, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*loaderFini)(void), void* stackEnd)
{
    Start* start = NULL;
    void* const found = dlsym(RTLD_NEXT, "__libc_start_main");
    memcpy(&start, &found, sizeof start);
    program = main;
    return start(watchedMain, argc, argv, init, fini, loaderFini, stackEnd);
}
