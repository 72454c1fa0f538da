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
  foreach(package fmt spdlog)
    add_library(${package}::${package} INTERFACE IMPORTED)
    target_link_libraries(${package}::${package} INTERFACE host_headers Threads::Threads)
  endforeach()
  target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
  target_compile_definitions(spdlog::spdlog INTERFACE SPDLOG_HEADER_ONLY SPDLOG_FMT_EXTERNAL FMT_HEADER_ONLY)
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
