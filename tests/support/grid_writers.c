/* Writes a grid in the way that its argument names. Killed within most of these ways it leaves a grid that looks whole but
 * is not; two are right. The grid is g.asc, or g.flt with g.hdr. */
#define _GNU_SOURCE
#include <fcntl.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#define HEADER "ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n"

static const char kText[] = HEADER "1.25 2.5 3.75\n4.25 5.5 6.875\n";
static const char kHeader[] = HEADER "byteorder LSBFIRST\n";
static const float kCells[] = {1.25F, 2.5F, 3.75F, 4.25F, 5.5F, 6.875F};

static int failed = 0;

static void check(int good)
{
    failed = failed || !good;
}

static int start(const char* name)
{
    const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    check(file >= 0);
    return file;
}

static void put(int file, const void* bytes, size_t count)
{
    check(write(file, bytes, count) == (ssize_t)count);
}

static void putFile(const char* name, const void* bytes, size_t count)
{
    const int file = start(name);
    put(file, bytes, count);
    check(close(file) == 0);
}

/* The cells have their size before they have their values. */
static void sizeFirst(void)
{
    int file;
    putFile("g.hdr", kHeader, strlen(kHeader));
    file = start("g.flt");
    check(ftruncate(file, sizeof kCells) == 0);
    put(file, kCells, sizeof kCells);
    check(close(file) == 0);
}

/* The new header is there while the cells are still the old ones. */
static void headerFirst(void)
{
    putFile("g.hdr", kHeader, strlen(kHeader));
    putFile("g.flt", kCells, sizeof kCells);
}

/* The text grows under its name, up to the last digit. */
static void plainText(void)
{
    putFile("g.asc", kText, strlen(kText));
}

/* The text has its name before it is whole. */
static void renamedEarly(void)
{
    const size_t most = strlen(kText) - 4;
    const int file = start("new");
    put(file, kText, most);
    check(rename("new", "g.asc") == 0);
    put(file, kText + most, strlen(kText) - most);
    check(close(file) == 0);
}

/* The text gets its name when it is whole: the right way. */
static void renamedWhole(void)
{
    putFile("new", kText, strlen(kText));
    check(rename("new", "g.asc") == 0);
}

enum { THREADS = 4, CELLS_EACH = 2000 };

static int shared = -1;

static void* putRow(void* row)
{
    const float cell = 1.5F;
    intptr_t failures = 0;
    int i;
    for (i = 0; i < CELLS_EACH; ++i) {
        const off_t at = (off_t)sizeof cell * ((intptr_t)row * CELLS_EACH + i);
        failures += pwrite(shared, &cell, sizeof cell, at) != (ssize_t)sizeof cell;
    }
    return (void*)failures;
}

/* Each row by a thread of its own, each cell by a call. The header comes when all of them are there. */
static void byThreads(void)
{
    pthread_t threads[THREADS];
    char header[200];
    void* failures = NULL;
    intptr_t row;
    shared = start("g.flt");
    for (row = 0; row < THREADS; ++row) {
        check(pthread_create(&threads[row], NULL, putRow, (void*)row) == 0);
    }
    for (row = 0; row < THREADS; ++row) {
        check(pthread_join(threads[row], &failures) == 0 && failures == NULL);
    }
    check(close(shared) == 0);
    snprintf(header, sizeof header, "ncols %d\nnrows %d\nxllcorner 0\nyllcorner 0\ncellsize 1\nbyteorder LSBFIRST\n",
             CELLS_EACH, THREADS);
    putFile("g.hdr", header, strlen(header));
}

int main(int argc, char** argv)
{
    const char* way = argc > 1 ? argv[1] : "";
    if (strcmp(way, "size-first") == 0) {
        sizeFirst();
    } else if (strcmp(way, "header-first") == 0) {
        headerFirst();
    } else if (strcmp(way, "plain-text") == 0) {
        plainText();
    } else if (strcmp(way, "renamed-early") == 0) {
        renamedEarly();
    } else if (strcmp(way, "renamed-whole") == 0) {
        renamedWhole();
    } else if (strcmp(way, "by-threads") == 0) {
        byThreads();
    } else {
        failed = 1;
    }
    return failed;
}
