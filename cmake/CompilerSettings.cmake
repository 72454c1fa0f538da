# The settings every target of the project shares: warnings, sanitizers and link hygiene.
# Targets take them with renderengine_target_settings(TARGET).

add_library(renderengine_settings INTERFACE)

target_compile_options(renderengine_settings INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Woverloaded-virtual
  $<$<BOOL:${RENDERENGINE_WERROR}>:-Werror>)

if(WIN32)
  # The system's headers define min and max as macros otherwise.
  target_compile_definitions(renderengine_settings INTERFACE NOMINMAX)
endif()

if(RENDERENGINE_SANITIZE)
  target_compile_options(renderengine_settings INTERFACE
    -fsanitize=${RENDERENGINE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(renderengine_settings INTERFACE -fsanitize=${RENDERENGINE_SANITIZE})
elseif(NOT WIN32)
  # A forgotten overload must fail the link of a shared library too.
  target_link_options(renderengine_settings INTERFACE -Wl,-z,defs)
endif()

if(RENDERENGINE_SANITIZE MATCHES address AND CMAKE_CXX_COMPILER_ID MATCHES Clang)
  # The name by which g++ tells the sources that the sanitizer is there.
  target_compile_definitions(renderengine_settings INTERFACE __SANITIZE_ADDRESS__=1)
endif()

if(RENDERENGINE_FUZZ)
  target_compile_options(renderengine_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

function(renderengine_target_settings target)
  target_link_libraries(${target} PRIVATE renderengine_settings)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL EXECUTABLE AND RENDERENGINE_SANITIZE MATCHES address)
    # A program's own symbol is found before the C library's only when it is exported.
    target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/KeepLibrariesLoaded.cpp)
    set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
  endif()
endfunction()
