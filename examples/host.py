#!/usr/bin/env python3
"""A host program: numbers the lines of standard input with a TPU procedure.

    host.py < TEXT

TPU_LIBRARY names the library, if it is not where the system looks for libraries.
"""

import ctypes
import os
import sys

NUMBER_LINES = """
PROCEDURE number_lines
  LOCAL row;
  POSITION(BEGINNING_OF(CURRENT_BUFFER));
  row := 1;
  LOOP
    COPY_TEXT(FAO("!4UL  ", row));
    EXITIF row = GET_INFO(CURRENT_BUFFER, "RECORD_COUNT");
    MOVE_VERTICAL(1);
    MOVE_HORIZONTAL(1 - CURRENT_COLUMN);
    row := row + 1;
  ENDLOOP;
ENDPROCEDURE;
"""


def load_library():
    default = "libtpu.1.dylib" if sys.platform == "darwin" else "libtpu.so.1"
    library = ctypes.CDLL(os.environ.get("TPU_LIBRARY", default))
    library.TPU_Initialize.restype = ctypes.c_void_p
    library.TPU_ExecuteCommand.argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    library.TPU_GetMessage.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
    library.TPU_Cleanup.argtypes = [ctypes.c_void_p]
    library.TPU_Cleanup.restype = None
    return library


def quoted(text):
    """An expression whose value is the text, which may hold what a literal cannot."""
    def between(code):
        return b'" + FAO("!%%C", %d) + "' % code

    pieces = [piece.replace(b"\0", between(0)) for piece in text.split(b'"')]
    return b'"' + between(34).join(pieces) + b'"'


class Session:
    def __init__(self, library):
        self.library = library
        self.context = library.TPU_Initialize()
        if not self.context:
            raise MemoryError

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.library.TPU_Cleanup(self.context)

    def run(self, statement):
        if self.library.TPU_ExecuteCommand(self.context, statement) != 0:
            raise MemoryError

    def message(self, size):
        buffer = ctypes.create_string_buffer(size + 1)
        count = self.library.TPU_GetMessage(self.context, buffer, size + 1)
        return buffer.raw[:count]

    def value(self, expression):
        # Behind a blank, since text like TPU$_SUCCESS alone is the name of a message.
        self.run(b"host_value := " + expression)
        self.run(b"MESSAGE(STR(LENGTH(host_value)))")
        size = int(self.message(20))
        self.run(b'MESSAGE(" " + host_value)')
        return self.message(size + 1)[1:]


def main():
    with Session(load_library()) as session:
        session.run(b"COMPILE(" + quoted(NUMBER_LINES.encode()) + b")")
        session.run(b"COPY_TEXT(" + quoted(sys.stdin.buffer.read().rstrip(b"\n")) + b")")
        session.run(b"number_lines")
        everything = b"CREATE_RANGE(BEGINNING_OF(CURRENT_BUFFER), END_OF(CURRENT_BUFFER))"
        sys.stdout.buffer.write(session.value(b"STR(" + everything + b")") + b"\n")


if __name__ == "__main__":
    main()
