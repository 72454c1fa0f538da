# The packages the project stands on. All come from the distribution.

find_package(Threads REQUIRED)

# renderengine_host_headers(TARGET HEADER...)
#
# Makes TARGET, an interface to packages of the build machine that are used as headers only; each is named by one of its
# headers. A cross-compiler must not see the build machine's whole header folder, so each package's folder is reached
# through a link in the build tree.
function(renderengine_host_headers target)
  set(links ${CMAKE_BINARY_DIR}/host-headers)
  file(MAKE_DIRECTORY ${links})
  foreach(header ${ARGN})
    get_filename_component(folder ${header} DIRECTORY)
    find_path(host_${folder} ${header} REQUIRED NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH PATHS /usr/local/include /usr/include)
    file(CREATE_LINK ${host_${folder}}/${folder} ${links}/${folder} SYMBOLIC)
  endforeach()
  add_library(${target} INTERFACE IMPORTED)
  set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${links})
endfunction()

if(CMAKE_CROSSCOMPILING)
  renderengine_host_headers(host_headers fmt/core.h spdlog/spdlog.h)
  add_library(fmt::fmt INTERFACE IMPORTED)
  target_link_libraries(fmt::fmt INTERFACE host_headers)
  target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
  add_library(spdlog STATIC ${CMAKE_CURRENT_LIST_DIR}/host/spdlog.cpp)
  add_library(spdlog::spdlog ALIAS spdlog)
  set_target_properties(spdlog PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_features(spdlog PRIVATE cxx_std_17)
  target_link_libraries(spdlog PUBLIC fmt::fmt Threads::Threads)
  target_compile_definitions(spdlog PUBLIC SPDLOG_COMPILED_LIB SPDLOG_FMT_EXTERNAL)
else()
  find_package(fmt REQUIRED)
  find_package(spdlog REQUIRED)
endif()

if(CMAKE_CROSSCOMPILING AND WIN32)
  # The compiler's run-time libraries lie beside what is built, so that the folder can be taken to a Windows machine.
  foreach(library libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
                    OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    file(COPY ${file} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  endforeach()
endif()

if(NOT WIN32)
  find_package(OpenGL REQUIRED COMPONENTS EGL)
  find_package(X11 REQUIRED)
endif()
