"""Parameter pools: writing entries in file order, and a small reader for tests and tools."""


class POOL_WRITER:
    def __init__(self, comment):
        self._lines = ["# " + comment]

    def text(self, key, value):
        self._lines.append('%s STR "%s"' % (key, value))

    def integer(self, key, value):
        self._lines.append("%s INT_32 %d" % (key, value))

    def real(self, key, value):
        self._lines.append("%s FLT_15 %.17g" % (key, value))

    def reals(self, key, values, tag="FLT_15"):
        self._vector(key, tag, ["%.17g" % value for value in values])

    def texts(self, key, values):
        self._vector(key, "STR", ['"%s"' % value for value in values])

    def _vector(self, key, tag, values):
        self._lines += ["%s %s_V 0 %d" % (key, tag, len(values)), "{", *values, "}"]

    def save(self, path):
        with open(path, "w", encoding="ascii") as file:
            file.write("\n".join(self._lines) + "\n")


def read(path):
    """All entries as a dictionary: bool, int, float, str, or a list of these. The first of equal keys wins."""
    entries = {}
    with open(path, encoding="ascii") as file:
        lines = iter(file.read().splitlines())
    for line in lines:
        if not line or line[0] in "# \t{}":
            continue
        key, tag, value = (line.split(None, 2) + [""])[:3]
        if tag.endswith("_V"):
            count = int(value.split()[1])
            assert next(lines).strip() == "{", "%s: %s" % (path, key)
            value = [_scalar(tag[:-2], next(lines).strip()) for _ in range(count)]
            assert next(lines).strip() == "}", "%s: %s" % (path, key)
        else:
            value = _scalar(tag, value.strip())
        entries.setdefault(key, value)
    return entries


def _scalar(tag, text):
    if tag == "STR":
        return text.strip('"')
    if tag == "BOL":
        return text == "TRUE"
    return float(text) if tag.startswith("FLT") else int(text)
