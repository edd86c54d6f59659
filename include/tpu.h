/* Editing sessions without a terminal, for programs that let TPU work on text.
 *
 * A context is one session: 24 rows by 80 columns that nobody sees, and the empty buffer
 * "MAIN". A host executes statements of the language in it and reads the session's last
 * message. Sessions write nothing to the host's terminal, install no signal handlers,
 * leave the locale alone, and know nothing of each other.
 *
 *     TPU_Context* context = TPU_Initialize();
 *     char message[256];
 *     TPU_ExecuteCommand(context, "MESSAGE(FAO(\"!SL lines\", 6 * 7))");
 *     TPU_GetMessage(context, message, (int)sizeof message);    -> "42 lines"
 *     TPU_Cleanup(context);
 *
 * There may be any number of contexts, and any thread may use them, but nothing here
 * takes locks: one call at a time, of whichever context. No C++ exception comes out.
 */
#ifndef TPU_H
#define TPU_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

typedef struct TPU_Context TPU_Context;

/* Begins a session. No start-up file is read. Null when memory is short. */
TPU_Context* TPU_Initialize(void);

/* Executes `command`, NUL-terminated text, as one statement: an assignment, or the call of
 * a built-in or a procedure. Returns 0 when it was executed, whatever came of it: what
 * TPU makes of a failure is a message, and what ERROR and ERROR_TEXT tell. Returns -1
 * when `context` or `command` is null, or when memory became short; the session goes on
 * then, with the statement done in part. */
int TPU_ExecuteCommand(TPU_Context* context, const char* command);

/* Copies the session's message, which is empty at first, to `buffer`, which has room for
 * `size` bytes, and a NUL behind it; of a longer message the first `size` - 1 bytes.
 * Returns the number of bytes copied, without that NUL; messages may hold NULs
 * themselves. Returns -1 when `context` or `buffer` is null or `size` is below 1. */
int TPU_GetMessage(TPU_Context* context, char* buffer, int size);

/* Ends the session and its subprocesses, and frees the context. Nothing is saved. Null is
 * ignored. */
void TPU_Cleanup(TPU_Context* context);

/* The same three under names with a dollar sign. */
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdollar-in-identifier-extension"
#endif
TPU_Context* TPU$INITIALIZE(void);
int TPU$EXECUTE_COMMAND(TPU_Context* context, const char* command);
void TPU$CLEANUP(TPU_Context* context);
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
