# The database engine: SQLite in the build "SQLite3 Multiple Ciphers", compiled once, symbols hidden, and with
# the sanitizers of VDSTO_SANITIZE like everything else (compiler.cmake): the thread sanitizer must see its
# locks, and undefined behaviour has not shown in it.
# By default its amalgamation is fetched by the version and hash pinned in deps/package-lock.json.
set(VDSTO_SQLITE_DIR "" CACHE PATH
    "Folder with sqlite3.c and sqlite3.h of SQLite3 Multiple Ciphers; empty: fetch the pinned one")
set(VDSTO_SQLITE_LIBRARY "" CACHE FILEPATH
    "Installed SQLite3 Multiple Ciphers library to link instead of compiling sqlite3.c")

set(sqlite_dir "${VDSTO_SQLITE_DIR}")
if(NOT sqlite_dir)
  vdsto_fetch_npm(better-sqlite3-multiple-ciphers/deps/sqlite3/sqlite3.c VDSTO_SQLITE_DIR)
  set(sqlite_dir ${VDSTO_NPM_DIR}/better-sqlite3-multiple-ciphers/deps/sqlite3)
endif()

# The cipher layer answers that a read went well when it failed, and then what chance left in memory goes into
# the database; and it does not look whether it got memory for its parameters. These lines are mended in a
# copy; a version without them passes as it is. So is how much memory a statement takes at a time for the pages
# as they were before it: by a kilobyte each, a change of one row in a transaction took thirty pieces.
function(mend_sqlite from to)
  file(READ ${from} source)
  string(REPLACE "\r\n" "\n" source "${source}")
  foreach(indent "  " "      ")
    string(REPLACE "(rc == SQLITE_IOERR_SHORT_READ)\n${indent}{\n${indent}  return rc;"
                   "(rc != SQLITE_OK)\n${indent}{\n${indent}  return rc;" source "${source}")
  endforeach()
  string(REPLACE "if (cloneCodecParams != NULL)" "if (cloneCipherParams != NULL && cloneCodecParams != NULL)"
         source "${source}")
  string(REPLACE "sqlite3_free(cloneCipherParams);"
         "sqlite3_free(cloneCipherParams), sqlite3_free(cloneCodecParams), cloneCodecParams = NULL;"
         source "${source}")
  string(REPLACE "MEMJOURNAL_DFLT_FILECHUNKSIZE 1024" "MEMJOURNAL_DFLT_FILECHUNKSIZE 32768" source "${source}")
  set(written "")
  if(EXISTS ${to})
    file(READ ${to} written)
  endif()
  if(NOT source STREQUAL written)
    file(WRITE ${to} "${source}")
  endif()
endfunction()

if(VDSTO_SQLITE_LIBRARY)
  add_library(vdsto_sqlite INTERFACE)
  target_link_libraries(vdsto_sqlite INTERFACE ${VDSTO_SQLITE_LIBRARY})
  target_include_directories(vdsto_sqlite SYSTEM INTERFACE ${sqlite_dir})
else()
  mend_sqlite(${sqlite_dir}/sqlite3.c ${PROJECT_BINARY_DIR}/sqlite3.c)
  add_library(vdsto_sqlite OBJECT ${PROJECT_BINARY_DIR}/sqlite3.c)
  target_include_directories(vdsto_sqlite SYSTEM PUBLIC ${sqlite_dir})
  target_compile_options(vdsto_sqlite PRIVATE -w -fvisibility=hidden)
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_options(vdsto_sqlite PRIVATE -O2)
  endif()
  target_compile_definitions(vdsto_sqlite PRIVATE
    SQLITE_DQS=0
    SQLITE_THREADSAFE=2               # a connection is never shared without our own lock
    SQLITE_DEFAULT_MEMSTATUS=0
    SQLITE_DEFAULT_WAL_SYNCHRONOUS=1
    SQLITE_ENABLE_CARRAY              # a list of row keys as one parameter
    SQLITE_ENABLE_FTS5                # the index of texts
    SQLITE_LIKE_DOESNT_MATCH_BLOBS
    SQLITE_MAX_EXPR_DEPTH=0
    SQLITE_WIN32_MAX_PATH_CHARS=32767 # as many as the system can have
    SQLITE_OMIT_DEPRECATED
    SQLITE_OMIT_LOAD_EXTENSION
    SQLITE_OMIT_SHARED_CACHE
    SQLITE_TEMP_STORE=3               # temporary results stay in memory: nothing unencrypted on disk
    SQLITE_USE_URI=0)
  find_package(Threads REQUIRED)
  target_link_libraries(vdsto_sqlite PUBLIC Threads::Threads ${CMAKE_DL_LIBS} m)
endif()
