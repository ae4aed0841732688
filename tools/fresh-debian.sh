# For bash scripts that try something in a Debian that has nothing: `source` it. Needs root and
# mmdebstrap; the packages come from where this machine has its own from.

debian_room=$(mktemp -d)
debian=$debian_room/debian
debian_leave() {
  local place
  for place in dev/pts dev/shm dev proc; do
    if mountpoint -q "$debian/$place"; then umount "$debian/$place"; fi
  done
  rm -rf --one-file-system "$debian_room"
}
trap debian_leave EXIT

# What apt here calls Debian; other archives are none of the program's business.
debian_sources() {
  local sources
  sources=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' \
    'Created-By: Packages' 'Origin: Debian' |
    sort -u | awk '$3 == "main" { print "deb", $1, $2, $3 }')
  [ -n "$sources" ] || sources=$(grep -hE '^deb .*bookworm.* main' /etc/apt/sources.list)
  echo "$sources"
}

# A minimal Debian 12 in the folder $debian, with the devices that programs expect.
make_debian() {
  local dates=() option file device
  # A machine whose archives stand still, or whose clock does, has told apt so.
  while read -r option; do dates+=("--aptopt=$option"); done < <(
    apt-config dump | grep -E '^Acquire::Check-(Valid-Until|Date) ' | sed 's/;$//')
  mmdebstrap --mode=root --variant=minbase --include=ca-certificates "${dates[@]}" bookworm \
    "$debian" < <(debian_sources)
  for file in resolv.conf hosts; do cp "/etc/$file" "$debian/etc/$file"; done
  mount -t proc proc "$debian/proc"
  mount -t tmpfs -o mode=755 tmpfs "$debian/dev"
  for device in null zero full random urandom tty; do
    cp -a "/dev/$device" "$debian/dev/$device"
  done
  mkdir "$debian/dev/pts" "$debian/dev/shm"
  mount -t devpts -o newinstance,ptmxmode=0666,mode=620,gid=5 devpts "$debian/dev/pts"
  ln -s pts/ptmx "$debian/dev/ptmx"
  ln -s /proc/self/fd "$debian/dev/fd"
  mount -t tmpfs -o mode=1777 tmpfs "$debian/dev/shm"
}

# Runs a command line there as root.
in_debian() {
  chroot "$debian" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive bash -c "$1" </dev/null
}
