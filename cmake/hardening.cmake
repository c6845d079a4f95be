# A bug shall end what the operator runs rather than be of use to somebody: bounds are checked where the C
# library can, stacks notice being overrun, and tables of functions can't be written once the program runs.
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  set(release $<CONFIG:Release>)
  add_compile_options($<${release}:-U_FORTIFY_SOURCE> $<${release}:-D_FORTIFY_SOURCE=2>
                      $<${release}:-fstack-protector-strong> $<${release}:-fstack-clash-protection>)
  add_link_options($<${release}:-Wl,-z,relro,-z,now>)
endif()
