# Completion of korvanti for fish.
complete -c korvanti -f
complete -c korvanti -l report -d 'Scan and print the report'
complete -c korvanti -l all -d 'Print every find of the report'
complete -c korvanti -l json -d 'Scan and print the report as JSON'
complete -c korvanti -l volumes -d 'Print the external volumes, with advice'
complete -c korvanti -l map -d 'Print the storage map'
complete -c korvanti -l help -d 'Print the usage text'
