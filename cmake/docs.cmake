# The target "docs": pages of the interface's headers and of docs/, in docs/html under the build folder. There is
# one where Doxygen is (scripts/install-dependencies.sh docs).
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  return()
endif()

set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/README.md)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR})
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_EXTRACT_ALL YES)         # what its neighbour's docstring covers is listed too
set(DOXYGEN_WARN_IF_UNDOCUMENTED NO) # scripts/make_operation_index.py looks for those
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_PREDEFINED VDSTO_API= "VDSTO_PRINTF(text,first)=")
get_property(interface GLOBAL PROPERTY vdsto_interface)
list(TRANSFORM interface PREPEND ${PROJECT_SOURCE_DIR}/)
doxygen_add_docs(docs ${interface} ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/docs
                 COMMENT "Writing the pages of the interface")
