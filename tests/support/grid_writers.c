/* Writes a grid in the way that its argument names. Killed within most of these ways it leaves a grid that looks whole but
 * is not; one is right. The grid is g.asc, or g.flt with g.hdr. */
#include <fcntl.h>
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
    } else {
        failed = 1;
    }
    return failed;
}
