/* A host program: lets TPU change a text.
 *
 *     host FILE STATEMENT < TEXT > NEW-TEXT
 *     host reformat.tpu 'reformat_buffer(60)' < letter.txt
 *
 * runs the TPU source FILE and then STATEMENT in a session whose buffer holds the text.
 *
 *     cc host.c $(pkg-config --cflags --libs tpu) -o host
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tpu.h>

typedef struct {
    char* bytes; /* a NUL stands behind them */
    size_t size, room;
} Text;

static void add(Text* text, const char* bytes, size_t size) {
    if (text->size + size + 1 > text->room) {
        size_t room = 2 * (text->size + size + 1);
        char* larger = realloc(text->bytes, room);
        if (!larger) exit(EXIT_FAILURE);
        text->bytes = larger;
        text->room = room;
    }
    memcpy(text->bytes + text->size, bytes, size);
    text->size += size;
    text->bytes[text->size] = '\0';
}

static void add_words(Text* text, const char* words) {
    add(text, words, strlen(words));
}

/* Adds an expression that has these bytes as its value. A literal of the language cannot
 * hold a quotation mark, nor C text a NUL: FAO makes them of their codes. */
static void add_quoted(Text* text, const char* bytes, size_t size) {
    size_t i;
    add_words(text, "\"");
    for (i = 0; i < size; ++i) {
        if (bytes[i] == '"') {
            add_words(text, "\" + FAO(\"!%C\", 34) + \"");
        } else if (bytes[i] == '\0') {
            add_words(text, "\" + FAO(\"!%C\", 0) + \"");
        } else {
            add(text, bytes + i, 1);
        }
    }
    add_words(text, "\"");
}

static void run(TPU_Context* session, const char* statement) {
    if (TPU_ExecuteCommand(session, statement) == 0) return;
    fputs("host: memory is short\n", stderr);
    exit(EXIT_FAILURE);
}

/* Runs a statement of two parts with the bytes as a literal in between. */
static void run_with(TPU_Context* session, const char* before, const char* bytes, size_t size,
                     const char* after) {
    Text statement = {NULL, 0, 0};
    add_words(&statement, before);
    add_quoted(&statement, bytes, size);
    add_words(&statement, after);
    run(session, statement.bytes);
    free(statement.bytes);
}

/* The text of an expression. It travels as a message, behind a blank: text like
 * "TPU$_SUCCESS" on its own would be taken for the name of a message. */
static Text value_of(TPU_Context* session, const char* expression) {
    Text statement = {NULL, 0, 0}, value = {NULL, 0, 0};
    char digits[32];
    add_words(&statement, "host_value := ");
    add_words(&statement, expression);
    run(session, statement.bytes);
    run(session, "MESSAGE(STR(LENGTH(host_value)))");
    TPU_GetMessage(session, digits, (int)sizeof digits);
    value.room = (size_t)atol(digits) + 2;
    value.bytes = malloc(value.room);
    if (!value.bytes) exit(EXIT_FAILURE);
    run(session, "MESSAGE(\" \" + host_value)");
    value.size = (size_t)TPU_GetMessage(session, value.bytes, (int)value.room) - 1;
    memmove(value.bytes, value.bytes + 1, value.size + 1);
    free(statement.bytes);
    return value;
}

static Text all_of(FILE* file) {
    Text text = {NULL, 0, 0};
    char part[65536];
    size_t size;
    while ((size = fread(part, 1, sizeof part, file)) > 0) add(&text, part, size);
    add(&text, "", 0);
    return text;
}

int main(int argc, char** argv) {
    Text input, output;
    TPU_Context* session;
    char said[1000];
    if (argc != 3) {
        fputs("usage: host FILE STATEMENT < TEXT\n", stderr);
        return EXIT_FAILURE;
    }
    session = TPU_Initialize();
    if (!session) return EXIT_FAILURE;
    run_with(session, "EXECUTE(CREATE_BUFFER(\"SOURCE\", ", argv[1], strlen(argv[1]), "))");

    input = all_of(stdin);
    run_with(session, "COPY_TEXT(", input.bytes, input.size, ")");
    run(session, "MESSAGE(\"\")");
    run(session, argv[2]);
    if (TPU_GetMessage(session, said, (int)sizeof said) > 0) fprintf(stderr, "%s\n", said);

    output = value_of(session,
                      "STR(CREATE_RANGE(BEGINNING_OF(CURRENT_BUFFER), END_OF(CURRENT_BUFFER)))");
    fwrite(output.bytes, 1, output.size, stdout);
    TPU_Cleanup(session);
    free(input.bytes);
    free(output.bytes);
    return fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
