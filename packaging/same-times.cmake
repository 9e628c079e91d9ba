# SPDX-License-Identifier: MIT
# Run by CPack before it packs: what was built now gets the time of its source, so that two
# builds of one commit are the same.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}"
        -exec touch --no-dereference "--date=@$ENV{SOURCE_DATE_EPOCH}" {} +
        COMMAND_ERROR_IS_FATAL ANY)
endif()
