"""What scripts/report is made of: one file for each kind of result, the engine that both games and positions come from,
pictures, and the page."""


class Fault(Exception):
    """What is wrong with a file or a request, in words for the user."""
