# Warnings every target of the project is built with.
add_library(tutti_warnings INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  target_compile_options(tutti_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion)
  # GCC 12 sees overlapping copies in plain assignments of short literals to std::string.
  target_compile_options(tutti_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(TUTTI_WERROR)
    target_compile_options(tutti_warnings INTERFACE -Werror)
  endif()
endif()

# tutti_include_tree(FOLDER SOURCE OUT): an include tree that holds just one folder, so that its headers are
# reached as "FOLDER/x.h" by the targets that are given the tree, and by nobody else.
function(tutti_include_tree folder source out)
  set(tree ${CMAKE_BINARY_DIR}/rooms/${folder})
  cmake_path(GET folder PARENT_PATH parent)
  file(MAKE_DIRECTORY ${tree}/${parent})
  if(NOT EXISTS ${tree}/${folder})
    file(CREATE_LINK ${source} ${tree}/${folder} SYMBOLIC)
  endif()
  set(${out} ${tree} PARENT_SCOPE)
endfunction()

# tutti_room(NAME FOLDER LINKS...): one static library per folder, tutti_NAME.
#
# Only targets that link the room see its include tree, so an include against the order of the rooms does not
# compile.
function(tutti_room name folder)
  tutti_include_tree(${folder} ${CMAKE_SOURCE_DIR}/${folder} tree)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/${folder}/*.h)
  add_library(tutti_${name} STATIC ${sources})
  target_include_directories(tutti_${name} PUBLIC ${tree})
  target_link_libraries(tutti_${name} PUBLIC ${ARGN} PRIVATE tutti_warnings)
endfunction()
