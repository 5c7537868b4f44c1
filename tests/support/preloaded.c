/* Loaded into the tool by LD_PRELOAD, this runs in place of the tool's own program: it looks the names of its arguments up
 * among the symbols of the executable, and calls routines of every kind as a program in C does. It prints what is
 * missing or wrong, and "done" at the end. */
#define _GNU_SOURCE

#include <dlfcn.h>
#include <gridforge/gridforge.h>
#include <stdio.h>
#include <string.h>

typedef int Main(int, char**, char**);
typedef int Start(Main*, int, char**, void (*)(void), void (*)(void), void (*)(void), void*);

static void expect(int holds, const char* what)
{
    if (!holds) {
        printf("wrong: %s\n", what);
    }
}
#define EXPECT(condition) expect((condition), #condition)

static void callTexts(void)
{
    char text[8];
    char rest[8];
    int64_t large = 0;
    EXPECT(ASAME("'a'", 3, "A  ", 3) == 1);
    EXPECT(FLAGEXISTSRET("Set grid", 8, "SET", 3, rest, sizeof rest) == 1);
    EXPECT(memcmp(rest, " grid   ", 8) == 0);
    UPPERCASE(text, sizeof text, "abc", 3);
    EXPECT(memcmp(text, "ABC     ", 8) == 0);
    AREAL(text, 3, 12345.0F);
    EXPECT(memcmp(text, "123", 3) == 0);
    EXPECT(CHECKINT8("5000000000", 10, &large) == 1 && large == INT64_C(5000000000));
    memcpy(text, "  x # y ", 8);
    EXPECT(COMMENTLINE(text, 8) == 0);
    EXPECT(memcmp(text, "x       ", 8) == 0);
    FILE___EXT(text, sizeof text, "a_B.mif", 7);
    EXPECT(memcmp(text, "_b      ", 8) == 0);
}

static void callPlane(void)
{
    const double x[] = {0, 4, 4, 0, 0, 4};
    const double y[] = {0, 0, 4, 4, 0, 0};
    const int32_t ends[] = {5};
    double xi = 0;
    double yi = 0;
    EXPECT(DISTANCE_8(0, 0, 3, 4) == 5.0F);
    EXPECT(INSIDE_POLYGON_8(1, 1, x, y, 6, 0, ends, 1) == 1);
    EXPECT(INSIDE_POLYGON_8(9, 1, x, y, 6, 0, ends, 1) == 0);
    EXPECT(INTERSECTION_POINT_8(0, 0, 2, 2, 0, 2, 2, 0, &xi, &yi) == 1 && xi == 1 && yi == 1);
}

static void callLines(void)
{
    char left[6];
    char right[6];
    float value = 0;
    EXPECT(CHECKLINE("a == b", 6, "*", 1, "==", 2, 0, right, sizeof right, left, sizeof left) == 1);
    EXPECT(memcmp(left, "a     ", 6) == 0 && memcmp(right, " b    ", 6) == 0);
    EXPECT(CSVVALUE("1,2.5", 5, 2, &value) == 1 && value == 2.5F);
    EXPECT(READGIS("Read GIS Lines", 14, "Lines", 5) == 1);
}

/* The message goes to the console, and is counted in the record. */
static void callMessages(void)
{
    EXPECT(DMESSAGES.x == -99999.0);
    memcpy(DMESSAGES.line[0], "CHECK 0007 - from C", 19);
    DMESSAGE(-2);
    EXPECT(DMESSAGES.id == 7 && DMESSAGES.messageClass == 3 && DMESSAGES.checkCount == 1);
}

static int check(int argc, char** argv, char** environment)
{
    int i;
    (void)environment;
    for (i = 1; i < argc; ++i) {
        if (dlsym(RTLD_DEFAULT, argv[i]) == NULL) {
            printf("missing: %s\n", argv[i]);
        }
    }
    callTexts();
    callPlane();
    callLines();
    callMessages();
    printf("done\n");
    fflush(stdout);
    /* Ends the process, the console written. */
    EXTRACTREAL("x", 1, "x", 1, "Size", 4, 1, 0.0F);
    printf("wrong: came back\n");
    return 0;
}

/* The start of every program, as its C library has it; only the routine to run is another. */
int __libc_start_main(Main* program, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*loaderFini)(void), void* stackEnd);
int __libc_start_main(Main* program, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*loaderFini)(void), void* stackEnd)
{
    Start* start = NULL;
    (void)program;
    *(void**)(&start) = dlsym(RTLD_NEXT, "__libc_start_main");
    return start(check, argc, argv, init, fini, loaderFini, stackEnd);
}
