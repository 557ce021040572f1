# What Doxygen reads in place of a document: its pages get names, and links go by them. It would take a link's file by its
# whole path, which may have a blank in it.
1s/^# Host guide$/& {#host-guide}/
1s/^# The wire$/& {#protocol}/
1s/^# Architecture$/& {#architecture}/
s/\]\((host-guide|protocol|architecture)\.md\)/](@ref \1)/g
