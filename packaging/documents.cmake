# Documents as they are read where they are installed: the chapters as HTML with their pictures, the man pages compressed.

find_program(CMARK cmark-gfm REQUIRED)
find_program(GZIP gzip REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(made)
set(docs ${CMAKE_SOURCE_DIR}/docs)
foreach(chapter manual.md=${docs}/manual.md protocol.md=${docs}/protocol.md hubn-tool.md=${docs}/hubn-tool.md
        simulator.md=${CMAKE_SOURCE_DIR}/simulator/README.md)
    string(REGEX MATCH "^([^=]*)\\.md=(.*)$" matched ${chapter})
    set(html ${CMAKE_CURRENT_BINARY_DIR}/${CMAKE_MATCH_1}.html)
    add_custom_command(OUTPUT ${html}
        COMMAND Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/makeHtml.py ${CMARK} ${CMAKE_MATCH_2} ${html}
        DEPENDS makeHtml.py ${CMAKE_MATCH_2} VERBATIM)
    install(FILES ${html} DESTINATION ${CMAKE_INSTALL_DOCDIR})
    list(APPEND made ${html})
endforeach()
install(DIRECTORY ${docs}/pictures DESTINATION ${CMAKE_INSTALL_DOCDIR})

foreach(page hubn-manager.1 hubn-tool.1 hubn-unit-simulator.1)
    set(packed ${CMAKE_CURRENT_BINARY_DIR}/${page}.gz)
    add_custom_command(OUTPUT ${packed} COMMAND ${GZIP} -9nc ${CMAKE_CURRENT_SOURCE_DIR}/${page} > ${packed}
        DEPENDS ${page} VERBATIM)
    install(FILES ${packed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    list(APPEND made ${packed})
endforeach()

set(packed ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
add_custom_command(OUTPUT ${packed} COMMAND ${GZIP} -9nc ${CMAKE_CURRENT_SOURCE_DIR}/debian/changelog > ${packed}
    DEPENDS debian/changelog VERBATIM)
install(FILES ${packed} debian/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
list(APPEND made ${packed})

add_custom_target(documents ALL DEPENDS ${made})
