/* The routines of gridforge that programs loaded into its process may call, and the record of its messages. They are
 * symbols of the executable itself: a shared object that is loaded with it (LD_PRELOAD) finds them by these names.
 *
 * Text       A pointer and, as the next argument, its length in bytes. Trailing blanks are padding, not content; no zero
 *            byte ends it. A text of length 0 may be a null pointer.
 * Results    A routine that returns text fills the caller's `result`, cut or padded with blanks at `resultLength`. The
 *            result may be the same place as an argument. Text that is changed in place is padded likewise.
 * Logicals   int32_t, 1 for true and 0 for false; as an argument any value other than 0 is true.
 * Counting   Fields, columns, vertices, cells and parts count from 1: vertex 1 is x[0].
 * Failures   A routine that ends the run writes its message to the console, closes all files, waits for Enter and ends the
 *            process with status 0. So does a lack of memory.
 * Threads    One only; routines share work space, the message record and the tables of files and layers. */
#ifndef GRIDFORGE_GRIDFORGE_H
#define GRIDFORGE_GRIDFORGE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* --- Comparing and finding ------------------------------------------------------------------------------------------ */

/* The same text, ignoring quotes, tabs, leading and trailing blanks and case, within the first 1000 characters. */
int32_t ASAME(const char* a, size_t aLength, const char* b, size_t bLength);
/* ASAME, but case counts. */
int32_t ASAMECS(const char* a, size_t aLength, const char* b, size_t bLength);
/* The key is anywhere in the text, ignoring case. A blank key is always found. */
int32_t FLAGEXISTS(const char* text, size_t textLength, const char* key, size_t keyLength);
/* FLAGEXISTS; `rest` becomes the text after the key, unchanged, or blank if the key is missing. */
int32_t FLAGEXISTSRET(const char* text, size_t textLength, const char* key, size_t keyLength, char* rest,
                      size_t restLength);
/* Removes tabs in place. True if nothing is left. */
int32_t BLANK(char* text, size_t textLength);
/* Left-trims in place and cuts at the first "#" or "!", in quotes too. True when the text was empty or began with
 * one. */
int32_t COMMENTLINE(char* text, size_t textLength);
/* Left-trims in place. True when the text is empty or begins with a digit, "-" or ".". */
int32_t NUMBERLINE(char* text, size_t textLength);
/* The length without trailing blanks and zero bytes. Where that is above 0 and below `textLength`, the next
 * character becomes a zero byte and all after it blanks. */
int32_t LENSL(char* text, size_t textLength);
/* Left-trims in place. True when there is something and it is all digits. */
int32_t POSITIVEINTEGERNUMBER(char* text, size_t textLength);
/* Reads the first value of the text as an integer of 32, 32 or 64 bits. False for an empty text and for anything
 * that is no such integer; `value` then stays. */
int32_t CHECKINT(const char* text, size_t textLength, int32_t* value);
int32_t CHECKINT4(const char* text, size_t textLength, int32_t* value);
int32_t CHECKINT8(const char* text, size_t textLength, int64_t* value);

/* --- Changing text -------------------------------------------------------------------------------------------------- */

/* Without leading blanks; tabs are not blanks. */
void TRIMF(char* result, size_t resultLength, const char* text, size_t textLength);
/* a to z and A to Z only; other bytes stay. */
void UPPERCASE(char* result, size_t resultLength, const char* text, size_t textLength);
void LOWERCASE(char* result, size_t resultLength, const char* text, size_t textLength);
/* Without any blank. */
void REMOVESPACES(char* result, size_t resultLength, const char* text, size_t textLength);
/* Without any tab. */
void REMOVETABS(char* result, size_t resultLength, const char* text, size_t textLength);
/* Cut at 256 characters. */
void SS256(char* result, size_t resultLength, const char* text, size_t textLength);
/* Without any " and '. */
void REMOVEQUOTES(char* result, size_t resultLength, const char* text, size_t textLength);
/* Each " doubled. */
void DOUBLEQUOTE(char* result, size_t resultLength, const char* text, size_t textLength);
/* Letters and digits; every other character becomes `replacement`, or goes when that is the zero byte. Nothing
 * left: X. */
void ALPHANUMERICONLY(char* result, size_t resultLength, const char* text, size_t textLength, char replacement);
/* Letters, digits and "_" only. Nothing left: X. */
void CLEANATTRIBUTENAME(char* result, size_t resultLength, const char* text, size_t textLength);
/* The first occurrence of `find`, case ignored, becomes the trimmed `with`. */
void REPLACE(char* result, size_t resultLength, const char* text, size_t textLength, const char* find,
             size_t findLength, const char* with, size_t withLength);
/* REPLACE until no occurrence is left. With a `with` that holds `find` it never returns. */
void REPLACEALL(char* result, size_t resultLength, const char* text, size_t textLength, const char* find,
                size_t findLength, const char* with, size_t withLength);
/* Moves the first word (blanks in quotes belong to it) from `text` to `word`, without its quotes; the rest of the
 * text is left-trimmed. */
void SPLITFIRSTWORD(char* word, size_t wordLength, char* text, size_t textLength);

/* --- Numbers to text, left-justified -------------------------------------------------------------------------------- */

void AINTEGER(char* result, size_t resultLength, int32_t value);
void AINTEGER8(char* result, size_t resultLength, int64_t value);
/* At least `digits` digits by leading zeros, in a field of 20; for values from 0. */
void AINTEGERPREC0(char* result, size_t resultLength, int32_t value, int32_t digits);
void AINTEGER8PREC0(char* result, size_t resultLength, int64_t value, int32_t digits);
/* Decimals by the size of the value, 6 below 0.01 down to 0 from 1000; trailing zeros go, the point stays: 2.5, 3. */
void AREAL(char* result, size_t resultLength, float value);
/* The same with 10 decimals below 1 down to 0 from 1e9. */
void AREAL8(char* result, size_t resultLength, double value);
/* `decimals` decimals in a field of 20; trailing zeros stay. */
void AREALD(char* result, size_t resultLength, float value, int32_t decimals);
void AREALD8(char* result, size_t resultLength, double value, int32_t decimals);

/* --- Counting and fields -------------------------------------------------------------------------------------------- */

/* Position of the first comma outside quotes of either kind; 0 without one. */
int32_t NEXTCOMMA(const char* text, size_t textLength);
/* 0 for a blank text, otherwise one more than the occurrences of the separator, of which every blank counts. */
int32_t NUMBEROFSUBSTRINGS(const char* text, size_t textLength, const char* separator, size_t separatorLength);
/* Field n, left-trimmed; blank when there are fewer. A separator of more than one character puts the fields off by
 * the excess. */
void SUBSTRING(char* result, size_t resultLength, const char* text, size_t textLength, const char* separator,
               size_t separatorLength, int32_t n);
/* How many numbers the text holds, an empty field between commas being one; negative if a character belongs to no
 * number. */
int32_t NUMBEROFNUMBERS(const char* text, size_t textLength);
/* Days of a date YYYYMMDD since the start of 2000 by years of 365 days; -1 when it cannot be read. */
int32_t NUMBEROFDAYS(const char* date, size_t dateLength);

/* --- File names, in which both \ and / separate folders; files are not looked at ------------------------------------ */

/* The extension with its dot, lower-cased; blank when none, or when the dot is in a folder. */
void FILEEXT(char* result, size_t resultLength, const char* name, size_t nameLength);
/* FILEEXT, its case kept. */
void FILEEXTKC(char* result, size_t resultLength, const char* name, size_t nameLength);
/* The whole name without its extension. */
void FILENAMEPATH(char* result, size_t resultLength, const char* name, size_t nameLength);
/* Without folder and extension. */
void FILENAME(char* result, size_t resultLength, const char* name, size_t nameLength);
/* Without folder. */
void FILENAMEEXT(char* result, size_t resultLength, const char* name, size_t nameLength);
/* The tail of FILENAME from its last "_", lower-cased; blank if a folder before it is longer. */
void FILE___EXT(char* result, size_t resultLength, const char* name, size_t nameLength);
/* FILENAME and FILENAMEPATH cut at their last "_". */
void FILENAMENO_(char* result, size_t resultLength, const char* name, size_t nameLength);
void FILENAMEPATHNO_(char* result, size_t resultLength, const char* name, size_t nameLength);
/* The folder with its last separator; blank without one. */
void FILEFOLDERPATH(char* result, size_t resultLength, const char* name, size_t nameLength);
/* `name` as seen from `folder`, joined by \, its ..\ and .\ steps resolved. */
void ADDFOLDER(char* result, size_t resultLength, const char* folder, size_t folderLength, const char* name,
               size_t nameLength);
/* Resolves \..\ and \.\ in the text. Names with / keep their dots. */
void REMOVEDOTDOT(char* result, size_t resultLength, const char* name, size_t nameLength);
/* Rewrites the head of a drive (C:\x becomes C Drive\x) or share (\\s becomes URL\s) in place; true when the name
 * is local. */
int32_t DRIVEANDURLNAME(char* name, size_t nameLength);

/* --- Points and segments -------------------------------------------------------------------------------------------- */

/* Routines with _8 take double coordinates; their arithmetic, and a result that is a float, drop to single partway. */

/* 0 when both differences are below 1e-6. */
float DISTANCE(float x1, float y1, float x2, float y2);
float DISTANCE_8(double x1, double y1, double x2, double y2);
/* Both differences are below the tolerance, strictly. */
int32_t SAME_POINT(float x1, float y1, float x2, float y2, float tolerance);
int32_t SAME_POINT_8(double x1, double y1, double x2, double y2, double tolerance);
/* Above 0 when a and b lie on the same side of the line through 1 and 2, below 0 on opposite ones, 0 on the line. */
float SAME_SIDE(float x1, float y1, float x2, float y2, float ax, float ay, float bx, float by);
float SAME_SIDE_8(double x1, double y1, double x2, double y2, double ax, double ay, double bx, double by);
/* p lies on the line through 1 and 2. */
int32_t INTERSECT_POINT(float x1, float y1, float x2, float y2, float px, float py);
/* Segments 1-2 and 3-4 meet; touching counts. */
int32_t INTERSECT_LINE(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4);
int32_t INTERSECT_LINE_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);
/* Where the lines through 1-2 and 3-4 cross: 3 in both segments, 1 in the first only, 2 in the second only, 4 in
 * neither; 0 for parallel and -1 for equal lines. The start of a segment is outside of it, its end inside. */
int32_t INTERSECT_LINE_V2(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4);
int32_t INTERSECT_LINE_V2_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);
/* The point where the infinite lines through 1-2 and 3-4 cross; false, with the point left alone, for equal slopes. */
int32_t INTERSECTION_POINT(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4, float* xi,
                           float* yi);
int32_t INTERSECTION_POINT_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4,
                             double* xi, double* yi);
/* Degrees between two segments, 0 to 180; 0 where either spans less than 1e-6 in x. */
float ANGLE2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);
/* The length of (u, v); 0 when neither exceeds 1e-6. */
float VECTOR_MAGNITUDE(float u, float v);

/* --- Regions, triangles, elements ----------------------------------------------------------------------------------- */

/* The point lies inside the region of `np` vertices in `nr` rings. Ring k ends at its closing vertex ir[k-1]; the
 * slot after that repeats the ring's second vertex and belongs to np. `xmin` is the least x of the vertices, or
 * less. Rings that end before the vertices do end the run. */
int32_t INSIDE_POLYGON(float px, float py, const float* x, const float* y, int32_t np, float xmin, const int32_t* ir,
                       int32_t nr);
int32_t INSIDE_POLYGON_8(double px, double py, const double* x, const double* y, int32_t np, double xmin,
                         const int32_t* ir, int32_t nr);
/* The value at p of three vertices, by the ray from vertex 3 through p to edge 1-2; outside the triangle it is
 * extrapolated. False, with -99999.0, when that ray is parallel to the edge. */
int32_t INTERPOLATE_TRIANGLE(float px, float py, const float* x, const float* y, const float* z, float* zi);
int32_t INTERPOLATE_TRIANGLE_8(double px, double py, const double* x, const double* y, const float* z, float* zi);
/* The same without that test: a parallel ray divides by 0. */
void INTERPOLATE_TRIANGLE_NO_CHECKS(float px, float py, const float* x, const float* y, const float* z, float* zi);
void INTERPOLATE_TRIANGLE_NO_CHECKS_8(double px, double py, const double* x, const double* y, const float* z,
                                      float* zi);
/* The value at p in an element of n = 3 or 4 vertices, of 4 as the mean over the triangles of three that hold p.
 * False outside, where zi becomes -99999.0 for 4 vertices and stays for 3; false with zi left alone for another n. */
int32_t INTERPOLATE_ELEMENT_8(double px, double py, const double* x, const double* y, const float* z, int32_t n,
                              double xmin, float* zi);
/* The area of one ring of n vertices, without repeated vertices or with its closing one. */
float POLYGON_AREA(const double* x, const double* y, int32_t n);

/* --- Channel sections ----------------------------------------------------------------------------------------------- */

/* The width of a circle of radius r at depth d above its lowest point; 0 within 1e-5 of bottom and top. */
float CIRCLE_WIDTH(float r, float d);
/* Area, width and wetted bed of the part of a section from (x1, z1) to (x2, z2) that is under the level; 0 when
 * `factor` is not above 0. */
void HYD_PARAM(float x1, float z1, float x2, float z2, float level, float factor, float* area, float* width,
               float* perimeter);
/* HYD_PARAM of the two halves, each with its factor. */
void HYD_PARAM2(float x1, float z1, float factor1, float x2, float z2, float factor2, float level, float* area1,
                float* area2, float* width1, float* width2, float* perimeter1, float* perimeter2);

/* --- Grid axes ------------------------------------------------------------------------------------------------------ */

/* n points in the axes of a grid with its origin at (x0, y0), turned by `angle` radians. */
void GEO_SHIFT(const double* x, const double* y, int32_t n, double x0, double y0, double angle, float* u, float* v);
/* The window of cells of `size` that holds n points in grid axes, u along columns (j) and v along rows (i), and
 * the bounds of the points. 0 stands for points below the first cell; the upper end is held to `rows` and
 * `columns`. */
void SET_SUB_GRID_AREA(const float* u, const float* v, int32_t n, float size, int32_t rows, int32_t columns,
                       int32_t* iLow, int32_t* jLow, int32_t* iHigh, int32_t* jHigh, float* umin, float* umax,
                       float* vmin, float* vmax);

/* Marks the cells of a window that a region covers on the middle line of their row: `flags` has a byte for each
 * cell, row by row from the south, and gets 1 or 0. The region is laid out as for INSIDE_POLYGON; the window includes
 * both its ends. Returns the count of marked cells. */
int64_t grid_inside_polygon(const float* u, const float* v, int32_t np, const int32_t* ir, int32_t nr, float size,
                            int32_t firstRow, int32_t lastRow, int32_t firstColumn, int32_t lastColumn, uint8_t* flags);
/* The cells that the segment from point 1 to point 2 passes through, in its order, into arrays of `limit`; returns their
 * count. More cells end the run. */
int32_t gridline(float u1, float v1, float u2, float v2, float size, int32_t limit, int32_t* rows, int32_t* columns);

/* --- Messages ------------------------------------------------------------------------------------------------------- */

#define GRIDFORGE_MESSAGE_WIDTH 10000

/* The record that a caller fills before DMESSAGE; text is padded with blanks. The tool counts its own messages here. */
struct gridforgeMessages {
    double x; /* place of the message, -99999.0 when it has none */
    double y;
    int32_t messageInline;  /* logical: lines 2 to 4 follow line 1 on its console line */
    int32_t messageLogUnit; /* file units, 0 for none */
    int32_t mifUnit;        /* GIS layer of messages */
    int32_t midUnit;
    int32_t checkMifUnit; /* GIS layer of checks */
    int32_t checkMidUnit;
    char line[4][GRIDFORGE_MESSAGE_WIDTH];
    char prefix[4]; /* goes before line 1 */
    double labelDx; /* offsets of the label in the GIS layer */
    double labelDy;
    int32_t errorCount; /* all messages by class */
    int32_t warningCount;
    int32_t checkCount;
    int32_t xyErrorCount; /* those with a place */
    int32_t xyWarningCount;
    int32_t xyCheckCount;
    int32_t id;                           /* number of the last message */
    int32_t messageClass;                 /* its class: 1 ERROR, 2 WARNING, 3 CHECK, 4 UNSTABLE, 0 none */
    char tag[3][GRIDFORGE_MESSAGE_WIDTH]; /* remarks that become line 4 */
    int32_t messageCsvUnit;
};
extern struct gridforgeMessages DMESSAGES;

/* Writes the message of the record after `blankLines` empty lines and clears the record. -1: no empty lines; -2
 * and below: nor to the log. */
void DMESSAGE(int32_t blankLines);
/* DMESSAGE with a place, drawn in the GIS layer of its class where one is open. */
void DMESSAGEXY(int32_t blankLines, double x, double y);
/* Blanks lines, prefix and tags, no place, messageInline off. */
void DMESSAGECLEAR(void);
/* Sets the six counts to 0. */
void DMESSAGERESETCOUNTERS(void);
/* A line of 80 underscores to the console, and to the unit when above 0. */
void DLINE(int32_t unit);

/* --- Lines and fields of control files ------------------------------------------------------------------------------ */

/* Reads a line of the file unit without tabs and comment, cut at `textLength`. False for a line with nothing but a
 * comment. A failed read and the end of the file end the run. */
int32_t READLINE(int32_t unit, char* text, size_t textLength);
/* Splits a line at the first `separator`, or without one at column `splitColumn` (0: all is left), into
 * `right` and `left`, neither trimmed. True when `left` holds the key ("*": any) and is not blank. */
int32_t CHECKLINE(const char* line, size_t lineLength, const char* key, size_t keyLength, const char* separator,
                  size_t separatorLength, int32_t splitColumn, char* right, size_t rightLength, char* left,
                  size_t leftLength);
/* The number of the first comma field that is ASAME with `name`, or `fallback`. Quotes do not count. */
int32_t CSVCOLUMN(const char* text, size_t textLength, const char* name, size_t nameLength, int32_t fallback);
/* The real in comma field `column`; false with 0.0 if the field is missing or cannot be read. */
int32_t CSVVALUE(const char* text, size_t textLength, int32_t column, float* value);
/* Comma field `column` outside quotes, without quotes and leading blanks; blank when there are fewer. In a
 * `lowerLine` of 100000 characters a value `key = value` is looked for first, the key with all the blanks of its
 * padding; one without "=" after the key ends the run. EXTRACTSTRINGREM takes the rest of the line as the value
 * of a key. */
void EXTRACTSTRING(char* result, size_t resultLength, const char* line, size_t lineLength, const char* lowerLine,
                   size_t lowerLineLength, const char* key, size_t keyLength, int32_t column);
void EXTRACTSTRINGREM(char* result, size_t resultLength, const char* line, size_t lineLength, const char* lowerLine,
                      size_t lowerLineLength, const char* key, size_t keyLength, int32_t column);
/* EXTRACTSTRING as a number; blank gives `fallback`, what cannot be read ends the run. */
int32_t EXTRACTINTEGER(const char* line, size_t lineLength, const char* lowerLine, size_t lowerLineLength,
                       const char* key, size_t keyLength, int32_t column, int32_t fallback);
float EXTRACTREAL(const char* line, size_t lineLength, const char* lowerLine, size_t lowerLineLength, const char* key,
                  size_t keyLength, int32_t column, float fallback);

/* --- GIS layers ----------------------------------------------------------------------------------------------------- */

#define GRIDFORGE_MAX_PARTS 10000

/* One object of a layer: its kind and parts. */
struct gisO {
    int32_t none; /* logicals: exactly one kind is true, except for center */
    int32_t point;
    int32_t line;
    int32_t pline;
    int32_t plineMultiple;
    int32_t region;
    int32_t ellipse;
    int32_t rect;
    int32_t roundRect;
    int32_t arc;
    int32_t center;
    int32_t text;
    int32_t multipoint;
    int32_t haveCoordinates; /* logical: the coordinates have been read */
    int32_t nSections;       /* parts of a polyline, points of a multipoint */
    int32_t nr;              /* rings of a region; polylines of a .shp: parts taken so far */
    /* Regions once read: the last vertex of each ring. Polylines of a .shp: part starts from 0 and the point count. */
    int32_t ir[GRIDFORGE_MAX_PARTS];
    char name[24]; /* its name in messages */
};

/* A column of a .mif. */
struct gisAttribute {
    char name[256];
    char type[24];
};

/* All take the handle of an open layer, 1 to 100. Handles that are none, and files that cannot be read, end the run. */

/* Reads the header and stops at the first object. */
void gisReadHeader(int32_t gisID);
/* Columns of the layer, after gisReadHeader. */
int32_t gisNumberAttributes(int32_t gisID);
/* Lines of the .mid, which is rewound, or the record count of the .dbf header. */
int32_t gisNumberRecords(int32_t gisID);
/* Goes back to the first object. */
void gisGotoBeginningOfData(int32_t gisID);
/* .mif only: back to the definitions of the columns, and their count. False, with a warning and a wait for Enter,
 * where they cannot be found. */
int32_t gisGotoBeginningOfAttributes(int32_t gisID, int32_t* count);
/* .mif only: the next definition of a column. */
void gisReadAttributeDefinition(int32_t gisID, struct gisAttribute* definition);
/* Clears `object` and reads the kind of the next object; false at the end of the layer. */
int32_t gisObjectType(int32_t gisID, struct gisO* object);
/* The object's attributes as one comma-separated line, text in double quotes with those inside doubled, cut at
 * `lineLength`. */
void gisReadRecord(int32_t gisID, const struct gisO* object, char* line, size_t lineLength);
/* The object's vertices into arrays of `maxVertices`, at least 2; their number, the centre, and for lines the
 * direction in degrees and the length. More vertices end the run. Without `readCoordinates` they are skipped,
 * except the first of a .mif. Values that a kind does not have stay, but `angle` and `length` become 0. A ring of a
 * region takes a vertex more than it has, the slot of INSIDE_POLYGON, and `np` counts that too. */
void gisReadObject(int32_t gisID, struct gisO* object, double* x, double* y, int32_t maxVertices, int32_t* np,
                   double* xc, double* yc, float* angle, float* length, int32_t readCoordinates);
/* The text holds "Read MI <name>" or "Read GIS <name>"; "Write MI" or "Write GIS"; "Read MID" or "Read RowCol". */
int32_t READGIS(const char* text, size_t textLength, const char* name, size_t nameLength);
int32_t WRITEGIS(const char* text, size_t textLength, const char* name, size_t nameLength);
int32_t READROWCOL(const char* text, size_t textLength, const char* name, size_t nameLength);

#ifdef __cplusplus
}
#endif

#endif
