// The search: every word must occur in a section. A section is the better the more of the words
// begin its title.
"use strict";
(function () {
  const field = document.getElementById("search");
  const list = document.getElementById("found");
  const up = document.body.dataset.up;
  const most = 30;
  const sections = searchIndex.map(([title, page, place, text]) =>
    ({ title, page, place, text, low: text.toLowerCase(), lowTitle: title.toLowerCase() }));
  let chosen = -1;

  function rate(section, words) {
    let rating = 0;
    for (const word of words) {
      const inTitle = section.lowTitle.indexOf(word);
      if (section.lowTitle === word || section.lowTitle.endsWith("." + word)) rating += 100;
      else if (inTitle === 0 || ". ".includes(section.lowTitle[inTitle - 1])) rating += 40;
      else if (inTitle > 0) rating += 20;
      else if (section.low.includes(word)) rating += 1;
      else return 0;
    }
    return rating;
  }

  function excerpt(section, words) {
    const place = Math.max(0, section.low.indexOf(words[0]) - 40);
    return (place > 0 ? "\u2026" : "") + section.text.slice(place, place + 160);
  }

  function show(found, words) {
    list.replaceChildren();
    for (const section of found) {
      const item = document.createElement("li");
      const link = document.createElement("a");
      link.href = up + section.place;
      link.append(section.page ? section.title + " \u2013 " + section.page : section.title);
      const small = document.createElement("small");
      small.textContent = excerpt(section, words);
      link.append(small);
      item.append(link);
      list.append(item);
    }
    if (found.length === 0) {
      const none = document.createElement("li");
      none.className = "none";
      none.textContent = "Nothing found.";
      list.append(none);
    }
    list.hidden = false;
    choose(found.length ? 0 : -1);
  }

  function choose(place) {
    const items = [...list.querySelectorAll("li")];
    chosen = place;
    items.forEach((item, i) => item.classList.toggle("chosen", i === place));
    if (place >= 0) items[place].scrollIntoView({ block: "nearest" });
  }

  function search() {
    const words = field.value.toLowerCase().split(/\s+/).filter(Boolean);
    if (words.length === 0) {
      list.hidden = true;
      return;
    }
    const found = sections.map((section) => ({ section, rating: rate(section, words) }))
      .filter((entry) => entry.rating > 0)
      .sort((a, b) => b.rating - a.rating || a.section.title.length - b.section.title.length);
    show(found.slice(0, most).map((entry) => entry.section), words);
  }

  // index.html?q=words shows what is found.
  const asked = new URLSearchParams(location.search).get("q");
  if (asked) {
    field.value = asked;
    search();
  }
  field.addEventListener("input", search);
  field.addEventListener("focus", search);
  field.addEventListener("keydown", (event) => {
    const links = list.querySelectorAll("a");
    if (event.key === "Escape") {
      list.hidden = true;
      field.blur();
    } else if (event.key === "Enter" && chosen >= 0 && links.length) {
      list.hidden = true;
      location.href = links[chosen].href;
    } else if (event.key === "ArrowDown" || event.key === "ArrowUp") {
      event.preventDefault();
      const step = event.key === "ArrowDown" ? 1 : links.length - 1;
      if (links.length) choose((chosen + step) % links.length);
    }
  });
  document.addEventListener("keydown", (event) => {
    if (event.key === "/" && document.activeElement !== field) {
      event.preventDefault();
      field.focus();
    }
  });
  document.addEventListener("click", (event) => {
    if (event.target !== field && !list.contains(event.target)) list.hidden = true;
  });
})();
