# What makes faults that were overlooked harder to exploit, where compiler and linker know
# it: addresses that nobody can guess, tables that nobody can write, stacks and jumps that
# are checked. None of it can be measured in the time that a key takes.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# The sanitizers have checks of their own.
if(NOT TPU_SANITIZE)
  set(flags -fstack-protector-strong -fstack-clash-protection)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i.86)$")
    list(APPEND flags -fcf-protection=full)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
    list(APPEND flags -mbranch-protection=standard)
  endif()
  foreach(flag ${flags})
    string(MAKE_C_IDENTIFIER "TPU_HAS${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
      target_compile_options(tpu_flags INTERFACE ${flag})
    endif()
  endforeach()
  # Checks the bounds of what is copied where they are known, which only optimising finds out.
  target_compile_options(tpu_flags INTERFACE
                         "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  foreach(flag relro now noexecstack)
    check_linker_flag(CXX "LINKER:-z,${flag}" TPU_HAS_z_${flag})
    if(TPU_HAS_z_${flag})
      add_link_options("LINKER:-z,${flag}")
    endif()
  endforeach()
endif()
