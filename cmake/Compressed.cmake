# Compresses a file as manual pages and changelogs are installed, the same bytes for the same input.
find_program(KESTA_GZIP gzip REQUIRED)

function(kesta_compressed input output)
    add_custom_command(OUTPUT ${output} DEPENDS ${input} VERBATIM
                       COMMAND ${KESTA_GZIP} -9 --no-name --stdout ${input} > ${output})
endfunction()
