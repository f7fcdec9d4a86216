# The headers nearly every file includes, parsed once for each target. A build without them (the second compiler's)
# keeps every file including what it uses.
function(lumenary_precompile target)
  if(LUMENARY_PRECOMPILED)
    target_precompile_headers(${target} PRIVATE
      <algorithm> <chrono> <expected> <functional> <map> <memory> <optional> <set> <span> <string> <string_view> <vector>
      ${ARGN})
  endif()
endfunction()
