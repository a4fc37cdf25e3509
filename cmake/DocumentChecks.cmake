# SPDX-License-Identifier: MIT
# The reference of operations: it is what the public headers give, every declaration in them has a doc comment,
# and they declare what the library exports. None of it needs anything built.

add_test(NAME docs.operations COMMAND "${PROJECT_SOURCE_DIR}/scripts/generate-operations" --check)
add_test(NAME docs.operationsRefusals COMMAND "${PROJECT_SOURCE_DIR}/scripts/generate-operations" --self-test)
