#include "tests/sandbox_sql/batch.h"
