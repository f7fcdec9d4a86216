# What a released program gets on top of the optimiser: it starts fast (its C++ library comes inside, dead code goes),
# holds its promises (library assertions stay on) and doesn't tell where it was built.
add_compile_options(
  -ffunction-sections -fdata-sections -fstack-protector-strong -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
add_compile_definitions(_FORTIFY_SOURCE=2 _GLIBCXX_ASSERTIONS)
# The desktop's module has the C++ library of its toolkit.
add_link_options("$<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:TYPE>,MODULE_LIBRARY>>:-static-libstdc++;-static-libgcc>"
  -Wl,--gc-sections -Wl,-z,relro -Wl,-z,now)
