# What comes from the npm registry, by the versions and hashes pinned in deps/package-lock.json. Its install
# scripts are not run.
set(VDSTO_NPM_DIR ${PROJECT_BINARY_DIR}/deps/node_modules)

# Makes sure that the file `wanted` of the packages is there. `option` names the folder to give instead.
function(vdsto_fetch_npm wanted option)
  set(fetch_dir ${PROJECT_BINARY_DIR}/deps)
  set(lock ${PROJECT_SOURCE_DIR}/deps/package-lock.json)
  set(fetched ${fetch_dir}/.fetched)
  if(EXISTS ${VDSTO_NPM_DIR}/${wanted} AND NOT ${lock} IS_NEWER_THAN ${fetched})
    return()
  endif()
  message(STATUS "Fetching packages (npm, no install scripts)")
  file(MAKE_DIRECTORY ${fetch_dir})
  configure_file(deps/package.json ${fetch_dir}/package.json COPYONLY)
  configure_file(deps/package-lock.json ${fetch_dir}/package-lock.json COPYONLY)
  execute_process(
    COMMAND npm ci --ignore-scripts --no-audit --no-fund --loglevel=error
    WORKING_DIRECTORY ${fetch_dir}
    RESULT_VARIABLE npm_result)
  if(NOT npm_result EQUAL 0 OR NOT EXISTS ${VDSTO_NPM_DIR}/${wanted})
    message(FATAL_ERROR "${wanted} could not be fetched; point ${option} at a folder that has it.")
  endif()
  file(TOUCH ${fetched})
endfunction()
