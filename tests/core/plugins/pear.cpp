#include "recorded.h"

// Built under both suffixes, so the origin tells which file was opened.

RECORDED_FACTORY(pear, "pear")
