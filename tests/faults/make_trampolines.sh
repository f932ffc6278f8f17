#!/usr/bin/env bash
# Prints an assembler file that stands in for every HDF5 function that the given object files call.
# Each stand-in asks orvmlIoTestsEnterHdf5 where to go: on to HDF5, or back with a failure.
#
#   make_trampolines.sh OBJECT...
set -euo pipefail

# What these functions answer when they fail; all others answer a negative number.
failsWithZero=' H5Tget_member_name H5Tget_size H5Dget_storage_size '

# Names that end in _g are data.
mapfile -t functions < <(nm -u "$@" | grep -oE '\bH5[A-Z]*[a-z_][A-Za-z_0-9]*' | grep -v '_g$' | sort -u)

echo '    .text'
for function in "${functions[@]}"; do
  failure=-1
  [[ $failsWithZero == *" $function "* ]] && failure=0
  cat <<ASM
    .globl $function
    .type $function, @function
$function:
    leaq .Lname_$function(%rip), %r10
    movq \$$failure, %r11
    jmp orvml_io_tests_trampoline
    .size $function, . - $function
    .pushsection .rodata
.Lname_$function:
    .asciz "$function"
    .popsection
ASM
done

# Every register that can carry an argument is kept: none of these functions takes a double.
cat <<'ASM'
    .type orvml_io_tests_trampoline, @function
orvml_io_tests_trampoline:
    pushq %rdi
    pushq %rsi
    pushq %rdx
    pushq %rcx
    pushq %r8
    pushq %r9
    pushq %r11
    movq %r10, %rdi
    movq 56(%rsp), %rsi
    call orvmlIoTestsEnterHdf5
    popq %r11
    popq %r9
    popq %r8
    popq %rcx
    popq %rdx
    popq %rsi
    popq %rdi
    testq %rax, %rax
    jz 1f
    movq %rax, %r10
    xorl %eax, %eax
    jmp *%r10
1:  movq %r11, %rax
    ret
    .size orvml_io_tests_trampoline, . - orvml_io_tests_trampoline
    .section .note.GNU-stack, "", @progbits
ASM
