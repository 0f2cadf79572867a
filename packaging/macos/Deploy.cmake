# Makes the installed bundle stand alone: brings Qt and the other libraries into it, then signs it. With the name of
# an identity in KORVANTI_SIGN_IDENTITY for the hardened runtime, as notarization wants it; without one for this
# machine's use only, which Apple silicon asks of any program.
#
# Given: KORVANTI_BUNDLE, KORVANTI_MACDEPLOYQT, KORVANTI_SOURCE.
set(programs ${KORVANTI_BUNDLE}/Contents/MacOS)
set(identity $ENV{KORVANTI_SIGN_IDENTITY})
set(signing --force --sign)
if(identity)
  list(APPEND signing ${identity} --options runtime --timestamp)
else()
  list(APPEND signing -)
endif()
set(entitled --entitlements ${KORVANTI_SOURCE}/packaging/macos/Korvanti.entitlements)

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${KORVANTI_MACDEPLOYQT} ${KORVANTI_BUNDLE} -executable=${programs}/korvanti -qmldir=${KORVANTI_SOURCE}/app/ui)

# What is inside comes first: each signature seals those below it.
file(GLOB_RECURSE libraries LIST_DIRECTORIES false ${KORVANTI_BUNDLE}/Contents/*.dylib)
file(GLOB frameworks ${KORVANTI_BUNDLE}/Contents/Frameworks/*.framework)
foreach(part ${libraries} ${frameworks})
  run(codesign ${signing} ${part})
endforeach()
run(codesign ${signing} ${entitled} ${programs}/korvanti)
run(codesign ${signing} ${entitled} ${KORVANTI_BUNDLE})
run(codesign --verify --deep --strict ${KORVANTI_BUNDLE})
