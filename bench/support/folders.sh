# Benchmark folders. Source it; needs $data, the folder that holds them.

# A folder of N files with names people have: numbered documents, photos, mixed case. Made once
# and kept (with a ".ready" mark), since making 100,000 files takes longer than measuring them.
make_folder() {
  local n=$1 dir="$data/$1"
  if [ -f "$dir.ready" ]; then return; fi
  rm -rf "$dir"; mkdir -p "$dir"
  (cd "$dir" && seq 1 "$n" | awk '{
      r = $1 % 4
      if (r == 0) print "Report " $1 ".pdf"
      else if (r == 1) print "photo_" $1 ".JPG"
      else if (r == 2) print "notes-" $1 ".txt"
      else print "Archive " $1 ".tar.gz" }' | xargs -d '\n' touch)
  touch "$dir.ready"
}
