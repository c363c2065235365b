"""What goes wrong, besides ValueError, MemoryError and OSError."""


class Error(Exception):
    """The work on a picture failed: the file is damaged or of an unknown format, or cannot be processed."""


class Cancelled(Error):
    """The work was stopped because ``progress`` returned False."""
